#include "tools/zentara/cameras/sensor_reading.h"

#include <cmath>

#include <zentara/host/camera_report.h>
#include <zentara/utils/format.h>

namespace Zentara::Tool {

using Utils::Format;

Json readingJson(const Reading& reading) {
    return {{"seconds", reading.seconds},
            {"temperatures", Json::parse(toJson(reading.temperatures))},
            {"acceleration", Json::parse(toJson(reading.acceleration))}};
}

std::string readingText(const Reading& reading) {
    const auto tenths = std::lround(reading.seconds * 10);
    std::string text = Format("%.% s") % (tenths / 10) % (tenths % 10);
    for (const Temperature& value : reading.temperatures)
        text += Format("  % % degC") % labelOf(value) % valueText(value.celsius);
    if (const auto& measured = reading.acceleration)
        text += "  acceleration " + (measured->name.empty() ? "" : printable(measured->name) + " ") +
                valueText(measured->value.x) + " " + valueText(measured->value.y) + " " +
                valueText(measured->value.z) + " g";
    return text;
}

std::string labelOf(const Temperature& value) {
    const std::string name = printable(value.name);
    return "sensor " + std::to_string(value.sensor) + (name.empty() ? "" : " (" + name + ")");
}

} // namespace Zentara::Tool
