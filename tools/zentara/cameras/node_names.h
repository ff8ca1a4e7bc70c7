#pragma once

#include <optional>
#include <string>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/core/node_labels.h>

namespace Zentara::Tool {

// What the selected node's description calls things; empty, or nothing, where it does not say.

[[nodiscard]] inline std::string parameterName(const Core::DescriptorStoreRO& store,
                                               ParameterType parameter) {
    const auto* labels = dynamic_cast<const Core::NodeLabels*>(&store);
    return labels == nullptr ? std::string() : labels->getParameterName(parameter);
}

[[nodiscard]] inline std::string sensorName(const Core::DescriptorStoreRO& store, std::int32_t sensorId) {
    const auto* labels = dynamic_cast<const Core::NodeLabels*>(&store);
    return labels == nullptr ? std::string() : labels->getTemperatureSensorName(sensorId);
}

[[nodiscard]] inline std::optional<Core::AccelerometerLabel>
describedAccelerometer(const Core::DescriptorStoreRO& store) {
    const auto* labels = dynamic_cast<const Core::NodeLabels*>(&store);
    return labels == nullptr ? std::nullopt : labels->getAccelerometer();
}

} // namespace Zentara::Tool
