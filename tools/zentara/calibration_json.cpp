#include "tools/zentara/calibration_json.h"

#include <cstdint>
#include <limits>
#include <set>
#include <sstream>
#include <vector>

#include <zentara/utils/files.h>
#include <zentara/utils/format.h>

#include "tools/zentara/exit_code.h"
#include "tools/zentara/pending_file.h"

namespace Zentara::Tool {

using Utils::Format;

namespace {

constexpr std::size_t mostCoefficients = 255;

/// Reads fields out of one JSON object, and knows which were there.
class FieldReader {
public:
    FieldReader(const Json& object, std::string where) : json(object), place(std::move(where)) {
        if (!json.is_object())
            fail("is no object");
    }

    const Json& field(const char* name) {
        known.insert(name);
        const auto found = json.find(name);
        if (found == json.end())
            fail(Format("has no field '%'") % name);
        return *found;
    }

    template<typename Integer>
    Integer integer(const char* name) {
        return integerOf<Integer>(field(name), name);
    }

    std::vector<std::int32_t> integers(const char* name) {
        const Json& list = field(name);
        if (!list.is_array() || list.size() > mostCoefficients)
            fail(Format("field '%' is no list of at most % numbers") % name % mostCoefficients);
        std::vector<std::int32_t> values;
        for (const Json& element : list)
            values.push_back(integerOf<std::int32_t>(element, name));
        return values;
    }

    void refuseOthers() const {
        for (const auto& [name, value] : json.items()) {
            if (known.count(name) == 0)
                fail(Format("has an unknown field '%'") % name);
        }
    }

    [[noreturn]] void fail(const std::string& what) const {
        throw ToolFailure(ExitCode_FAILED, place + " " + what);
    }

private:
    template<typename Integer>
    Integer integerOf(const Json& value, const char* name) const {
        constexpr auto least = static_cast<std::int64_t>(std::numeric_limits<Integer>::min());
        constexpr auto most = static_cast<std::int64_t>(std::numeric_limits<Integer>::max());
        const bool fits = value.is_number_integer() &&
                          (!value.is_number_unsigned() || value.get<std::uint64_t>() <= std::uint64_t{most});
        if (!fits || value.get<std::int64_t>() < least || value.get<std::int64_t>() > most)
            fail(Format("field '%' takes whole numbers from % to %, not %") % name % least % most %
                 value.dump());
        return static_cast<Integer>(value.get<std::int64_t>());
    }

    const Json& json;
    const std::string place;
    std::set<std::string> known;
};

} // namespace

Json toJson(const CalibrationInternal& calibration) {
    const TemperatureCompensationData data = calibration.getTemperatureCompensation();
    return {{"phaseDelay", calibration.getPhaseDelay()},
            {"phaseDelay2", calibration.getPhaseDelay2()},
            {"temperatureCompensation",
             {{"kind", data.kind},
              {"firstCoefficients", data.firstCoefficients},
              {"secondCoefficients", data.secondCoefficients}}}};
}

CalibrationInternal calibrationFromJson(const Json& json, const std::string& source) {
    FieldReader fields(json, source + ": the calibration");
    CalibrationInternal calibration;
    calibration.setPhaseDelay(fields.integer<std::int16_t>("phaseDelay"));
    calibration.setPhaseDelay2(fields.integer<std::int16_t>("phaseDelay2"));
    FieldReader compensation(fields.field("temperatureCompensation"), source + ": temperatureCompensation");
    TemperatureCompensationData data;
    data.kind = compensation.integer<std::uint8_t>("kind");
    data.firstCoefficients = compensation.integers("firstCoefficients");
    data.secondCoefficients = compensation.integers("secondCoefficients");
    fields.refuseOthers();
    compensation.refuseOthers();
    if (data.kind == 0 && !data.firstCoefficients.empty())
        compensation.fail("of kind 0 has coefficients, which no camera would get");
    attempt("take the coefficients of " + source,
            [&] { calibration.setTemperatureCompensation(std::move(data)); });
    return calibration;
}

CalibrationInternal asMarshalled(const CalibrationInternal& calibration) {
    unsigned int size = 0;
    calibration.marshal(nullptr, &size);
    std::vector<unsigned char> bytes(size + 1);
    CalibrationInternal copy;
    if (calibration.marshal(bytes.data(), &size) != 0 || copy.unmarshal(bytes.data(), size) != 0)
        throw ToolFailure(ExitCode_FAILED,
                          Format("the calibration does not survive its form of % bytes") % size);
    return copy;
}

Json readJsonFile(const std::string& path) {
    std::string text;
    attempt("read the file", [&] { text = Utils::readFile(path); });
    try {
        return Json::parse(text);
    } catch (const Json::exception& failure) {
        throw ToolFailure(ExitCode_FAILED, Format("'%' is no JSON: %") % path % failure.what());
    }
}

void writeJsonFile(const std::string& path, const Json& json) {
    PendingFile file(path);
    std::ostringstream text;
    print(text, json);
    attempt("write the file", [&] { Utils::writeFile(file.partPath(), text.str()); });
    file.commit();
}

} // namespace Zentara::Tool
