#pragma once

#include <cstdint>

namespace Zentara::Simulated {

// The registers of the time-of-flight controller that show a sensor's reading.
constexpr std::uint8_t sensorTemperatureRegister = 0x53;       ///< 1/16 degree Celsius
constexpr std::uint8_t illuminationTemperatureRegister = 0x70; ///< the same
constexpr std::uint8_t accelerationRegister = 0x71;            ///< x, then y and z: signed, 1/1000 g

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
