#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Zentara {

/// One reading of one temperature sensor. A copyable value. Separate.
struct SensorValue {
    std::int32_t sensorId = -1; ///< the camera's number for the sensor; -1: not known
    float value = 0;            ///< degrees Celsius, of a reading as of a calibration

    friend bool operator==(const SensorValue&, const SensorValue&) = default;
};

/// The readings of a camera's temperature sensors at one time, in the camera's order. Empty: the camera has none, or none
/// was made. A copyable value. Separate.
struct SensorValueArray {
    std::vector<SensorValue> values; ///< one for each sensor

    [[nodiscard]] std::size_t size() const noexcept { return values.size(); }
    [[nodiscard]] bool empty() const noexcept { return values.empty(); }

    friend bool operator==(const SensorValueArray&, const SensorValueArray&) = default;
};

} // namespace Zentara
