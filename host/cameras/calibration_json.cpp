#include "host/cameras/calibration_json.h"

#include <cstdint>
#include <utility>
#include <vector>

#include <zentara/utils/format.h>

namespace Zentara::Host {

using Utils::Format;

namespace {

constexpr std::size_t mostCoefficients = 255;

std::vector<std::int32_t> coefficientsFrom(const JsonPlace& place) {
    std::vector<std::int32_t> values;
    for (const JsonPlace& item : place.items())
        values.push_back(item.integer<std::int32_t>());
    if (values.size() > mostCoefficients)
        place.fail(Format("has % numbers, of at most %") % values.size() % mostCoefficients);
    return values;
}

} // namespace

Json calibrationJson(const CalibrationInternal& calibration) {
    const TemperatureCompensationData data = calibration.getTemperatureCompensation();
    return {{"phaseDelay", calibration.getPhaseDelay()},
            {"phaseDelay2", calibration.getPhaseDelay2()},
            {"temperatureCompensation",
             {{"kind", data.kind},
              {"firstCoefficients", data.firstCoefficients},
              {"secondCoefficients", data.secondCoefficients}}}};
}

CalibrationInternal calibrationFromJson(const JsonPlace& place) {
    CalibrationInternal calibration;
    place.allow({"phaseDelay", "phaseDelay2", "temperatureCompensation"});
    calibration.setPhaseDelay(place.at("phaseDelay").integer<std::int16_t>());
    calibration.setPhaseDelay2(place.at("phaseDelay2").integer<std::int16_t>());
    const JsonPlace compensation = place.at("temperatureCompensation");
    compensation.allow({"kind", "firstCoefficients", "secondCoefficients"});
    TemperatureCompensationData data;
    data.kind = compensation.at("kind").integer<std::uint8_t>();
    data.firstCoefficients = coefficientsFrom(compensation.at("firstCoefficients"));
    data.secondCoefficients = coefficientsFrom(compensation.at("secondCoefficients"));
    if (data.firstCoefficients.size() != data.secondCoefficients.size())
        compensation.at("secondCoefficients")
            .fail(Format("has % numbers and firstCoefficients %") % data.secondCoefficients.size() %
                  data.firstCoefficients.size());
    if (data.kind == 0 && !data.firstCoefficients.empty())
        compensation.at("kind").fail("is 0, with which no camera would get the coefficients");
    calibration.setTemperatureCompensation(std::move(data));
    return calibration;
}

} // namespace Zentara::Host
