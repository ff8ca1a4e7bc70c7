#include "tools/zentara/cameras/parameter_changes.h"

#include <charconv>
#include <optional>

#include <zentara/utils/format.h>

#include "host/json_fields.h"
#include "tools/zentara/cameras/parameter_text.h"
#include "tools/zentara/cameras/stored_document.h"
#include "tools/zentara/interrupt.h"
#include "tools/zentara/supervisor.h"

namespace Zentara::Tool {

using Utils::Format;

namespace {

Json changesBetween(const Json& before, const Json& after) {
    Json changes = Json::array();
    for (const auto& [name, value] : after.items()) {
        const Json old = before.value(name, Json());
        if (old != value)
            changes.push_back({{"parameter", std::stoi(name)},
                               {"path", "values/" + name},
                               {"before", old},
                               {"after", value}});
    }
    return changes;
}

/// What a camera that refused a state has taken of it all the same.
std::string takenText(const Camera& camera, const Json& before) {
    std::string taken;
    try {
        for (const Json& change : changesBetween(before, Tool::toJson(camera.parameterValues())))
            taken += (taken.empty() ? "" : ", ") + change["parameter"].dump();
    } catch (const Failure&) {
        return "what it has taken of them cannot be read";
    }
    return taken.empty() ? "nothing was changed" : "it has changed all the same: " + taken;
}

void checkFrom(const Camera& camera, int number, const ParameterValue& value, const std::string& place) {
    try {
        camera.checkParameter(number, value);
    } catch (const Failure& failure) {
        throw Failure(failure.code(), place + failure.message(), failure.cause(), failure.remedy());
    }
}

} // namespace

StoredValues readValues(const std::string& path) {
    const Json json = readJsonFile(path);
    JsonFields fields(json, path);
    checkDocument(fields);
    StoredValues stored;
    stored.serialNumber = serialNumberIn(json);
    JsonFields values = fields.object("values");
    for (const auto& [name, value] : fields.need("values").items()) {
        try {
            int number = -1;
            std::from_chars(name.data(), name.data() + name.size(), number);
            if (name != std::to_string(number) || !parameterKind(number))
                throw Failure(Failure::Usage,
                              Format("'%' is no parameter; they are numbered from 0 to 15") % name);
            stored.values[number] = valueFromJson(number, value, "it");
        } catch (const Failure& failure) {
            values.fail(name, failure.what()); // not the command line is wrong
        }
    }
    fields.refuseOthers({"verb", "camera"});
    return stored;
}

void setOneByOne(const Camera& camera, const std::vector<std::pair<int, ParameterValue>>& settings) {
    for (const auto& [number, value] : settings)
        camera.checkParameter(number, value);
    std::string done;
    const InterruptWatch untilAllAreSet;
    std::optional<HalfDone> halfDone;
    for (const auto& [number, value] : settings) {
        try {
            camera.setParameter(number, value);
        } catch (const Failure& failure) {
            throw Failure(failure.code(),
                          failure.what() + (done.empty() ? "; nothing was set" : "; set before it: " + done));
        }
        done += (done.empty() ? "" : ", ") + std::to_string(number);
        halfDone.emplace(std::vector<std::string>{"set before it: " + done});
    }
}

void tellRounded(const Camera& camera, int number, const ParameterValue& asked, Console& console) {
    const Parameter now = camera.parameter(number);
    if (now.value && *now.value != asked)
        note(console, Format("parameter %: the camera took % for %") % number % valueText(*now.value) %
                          valueText(asked));
}

Json loadValues(const Camera& camera, const ParameterValues& values, const std::string& file, bool dryRun,
                Console& console) {
    for (const auto& [number, value] : values)
        checkFrom(camera, number, value, Format("'%', /values/%: ") % file % number);
    const Json before = Tool::toJson(camera.parameterValues());
    if (dryRun)
        return changesBetween(before, Tool::toJson(values));
    try {
        camera.setParameters(values);
    } catch (const Failure& failure) {
        throw Failure(failure.code(), std::string(failure.what()) + "; " + takenText(camera, before));
    }
    for (const auto& [number, value] : values)
        tellRounded(camera, number, value, console);
    return changesBetween(before, Tool::toJson(camera.parameterValues()));
}

} // namespace Zentara::Tool
