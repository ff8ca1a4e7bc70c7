#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <zentara/parameter_type.h>

namespace Zentara::Core {

/// Where an accelerometer's values begin, and what people call it. A copyable value. Separate.
struct AccelerometerLabel {
    std::uint32_t registerAddress = 0; ///< of x, in the time-of-flight controller; y and z follow it
    std::string name;                  ///< for people; empty where the description has none
};

/// What people call the things of a node. A descriptor store that has names derives its view from this as well as from
/// `DescriptorStoreRO`, and a host asks by `dynamic_cast`. All answers are about the selected node. Header only.
/// Separate.
class NodeLabels {
public:
    virtual ~NodeLabels() = default;
    /// Empty where the description has no name.
    [[nodiscard]] virtual std::string getParameterName(ParameterType parameter) const = 0;
    [[nodiscard]] virtual std::string getTemperatureSensorName(std::int32_t sensorId) const = 0;
    /// Nothing for a camera without one, or whose description does not tell where it is.
    [[nodiscard]] virtual std::optional<AccelerometerLabel> getAccelerometer() const = 0;
};

} // namespace Zentara::Core
