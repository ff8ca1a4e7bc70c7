#include <zentara/host/sensor_reading.h>

#include <map>

#include <zentara/host/plot.h>

#include "host/cameras/camera_json.h"
#include "host/json_file.h"

namespace Zentara::Host {

std::string toJson(const SensorReading& reading) {
    Json json{{"seconds", reading.seconds},
              {"temperatures", temperaturesJson(reading.temperatures)},
              {"acceleration", Json()}};
    if (const auto& measured = reading.acceleration) {
        json["acceleration"] = {{"name", orNull(measured->name)}, {"register", measured->registerAddress}};
        json["acceleration"].update(vectorJson(measured->value));
    }
    return printed(json);
}

std::string labelOf(const Temperature& value) {
    return "sensor " + std::to_string(value.sensor) + (value.name.empty() ? "" : " (" + value.name + ")");
}

Picture plotOf(const std::string& camera, const std::vector<SensorReading>& readings) {
    std::map<std::int32_t, PlotLine> temperatures;
    std::vector<PlotLine> accelerations{{"x", {}}, {"y", {}}, {"z", {}}};
    for (const SensorReading& reading : readings) {
        for (const Temperature& value : reading.temperatures) {
            PlotLine& line = temperatures[value.sensor];
            line.name = value.name.empty() ? labelOf(value) : value.name; // names stand in one line
            line.points.emplace_back(reading.seconds, value.celsius);
        }
        if (const auto& measured = reading.acceleration) {
            accelerations[0].points.emplace_back(reading.seconds, measured->value.x);
            accelerations[1].points.emplace_back(reading.seconds, measured->value.y);
            accelerations[2].points.emplace_back(reading.seconds, measured->value.z);
        }
    }
    std::vector<PlotPanel> panels{{"Temperatures of " + camera, "degC", {}}};
    for (const auto& [sensor, line] : temperatures)
        panels.front().lines.push_back(line);
    if (!accelerations.front().points.empty())
        panels.push_back({"Acceleration of " + camera, "g", accelerations});
    return plot("seconds", panels);
}

} // namespace Zentara::Host
