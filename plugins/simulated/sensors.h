#pragma once

#include <cstdint>

namespace Zentara::Simulated {

/// What the sensors of a simulated camera show.
struct SensorReadings {
    std::uint16_t sensorTemperature = 0;
    std::uint16_t illuminationTemperature = 0;
    std::int16_t acceleration[3] = {};
};

/// The readings so long after power-on: temperatures that rise and settle after about two minutes, and a camera that
/// stands upright and trembles a little. Safe.
[[nodiscard]] SensorReadings sensorsAfter(double seconds) noexcept;

} // namespace Zentara::Simulated
