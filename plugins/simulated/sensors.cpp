#include "plugins/simulated/sensors.h"

#include <cmath>

namespace Zentara::Simulated {
namespace {

/// A temperature that goes from `cold` to `warm` with a time constant, and follows the fan a little.
std::uint16_t warming(double cold, double warm, double constant, double seconds) noexcept {
    const double celsius =
        warm - (warm - cold) * std::exp(-seconds / constant) + 0.15 * std::sin(seconds / 3.0);
    return static_cast<std::uint16_t>(std::lround(celsius * 16));
}

std::int16_t milli(double g) noexcept { return static_cast<std::int16_t>(std::lround(g * 1000)); }

} // namespace

SensorReadings sensorsAfter(double seconds) noexcept {
    SensorReadings readings;
    readings.sensorTemperature = warming(36.5, 45.5, 40, seconds);
    readings.illuminationTemperature = warming(41.0, 56.0, 25, seconds);
    readings.acceleration[0] = milli(0.012 * std::sin(seconds * 0.7));
    readings.acceleration[1] = milli(1.0 + 0.002 * std::sin(seconds * 5));
    readings.acceleration[2] = milli(0.008 * std::cos(seconds * 1.1));
    return readings;
}

} // namespace Zentara::Simulated
