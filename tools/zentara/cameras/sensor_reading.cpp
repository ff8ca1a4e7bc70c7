#include "tools/zentara/cameras/sensor_reading.h"

#include <zentara/utils/format.h>

#include "host/float_text.h"
#include "tools/zentara/streams/frame_counter.h"

namespace Zentara::Tool {

using Utils::Format;

Json toJson(const Reading& reading) {
    Json json{{"seconds", reading.seconds}, {"temperatures", Json::array()}};
    for (const Temperature& value : reading.temperatures)
        json["temperatures"].push_back(
            {{"sensor", value.sensor}, {"name", orNull(value.name)}, {"celsius", floatJson(value.celsius)}});
    json["acceleration"] = Json();
    if (const auto& measured = reading.acceleration)
        json["acceleration"] = {{"name", orNull(measured->name)},
                                {"register", measured->registerAddress},
                                {"x", floatJson(measured->value.x)},
                                {"y", floatJson(measured->value.y)},
                                {"z", floatJson(measured->value.z)}};
    return json;
}

std::string toText(const Reading& reading) {
    std::string text = fixed(reading.seconds, 1) + " s";
    for (const Temperature& value : reading.temperatures)
        text += Format("  % % degC") % labelOf(value) % floatText(value.celsius);
    if (const auto& measured = reading.acceleration)
        text += "  acceleration " + (measured->name.empty() ? "" : printable(measured->name) + " ") +
                floatText(measured->value.x) + " " + floatText(measured->value.y) + " " +
                floatText(measured->value.z) + " g";
    return text;
}

std::string labelOf(const Temperature& value) {
    const std::string name = printable(value.name);
    return "sensor " + std::to_string(value.sensor) + (name.empty() ? "" : " (" + name + ")");
}

} // namespace Zentara::Tool
