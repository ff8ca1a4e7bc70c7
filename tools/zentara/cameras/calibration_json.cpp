#include "tools/zentara/cameras/calibration_json.h"

#include <cstdint>
#include <utility>
#include <vector>

#include <zentara/utils/format.h>

#include "tools/zentara/exit_code.h"

namespace Zentara::Tool {

using Utils::Format;

namespace {

constexpr std::size_t mostCoefficients = 255;

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

CalibrationInternal calibrationFromJson(JsonFields fields) {
    CalibrationInternal calibration;
    calibration.setPhaseDelay(fields.integer<std::int16_t>("phaseDelay"));
    calibration.setPhaseDelay2(fields.integer<std::int16_t>("phaseDelay2"));
    JsonFields compensation = fields.object("temperatureCompensation");
    TemperatureCompensationData data;
    data.kind = compensation.integer<std::uint8_t>("kind");
    data.firstCoefficients = compensation.integers("firstCoefficients", mostCoefficients);
    data.secondCoefficients = compensation.integers("secondCoefficients", mostCoefficients);
    fields.refuseOthers();
    compensation.refuseOthers();
    if (data.firstCoefficients.size() != data.secondCoefficients.size())
        compensation.fail("secondCoefficients", Format("has % numbers and firstCoefficients %") %
                                                    data.secondCoefficients.size() %
                                                    data.firstCoefficients.size());
    if (data.kind == 0 && !data.firstCoefficients.empty())
        compensation.fail("kind", "is 0, with which no camera would get the coefficients");
    calibration.setTemperatureCompensation(std::move(data));
    return calibration;
}

CalibrationInternal asMarshalled(const CalibrationInternal& calibration) {
    unsigned int size = 0;
    calibration.marshal(nullptr, &size);
    std::vector<unsigned char> bytes(size + 1);
    CalibrationInternal copy;
    if (calibration.marshal(bytes.data(), &size) != 0 || copy.unmarshal(bytes.data(), size) != 0)
        throw Failure(Failure::Failed, Format("the calibration does not survive its form of % bytes") % size);
    return copy;
}

} // namespace Zentara::Tool
