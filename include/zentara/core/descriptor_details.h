#pragma once

#include <cstdint>
#include <string>

#include <zentara/core/descriptor_store_ro.h>

namespace Zentara::Core {

/// What the value of a depth pixel is the length of.
enum class DepthAlong : std::int32_t {
    Axis, ///< of the way along the optical axis, from the lens' plane to the point's: z
    Ray,  ///< of the ray, from the lens to the point
};

/// What a description tells of a camera's hardware, and the store's accessors have no place for. A descriptor store that
/// knows it derives its view from this as well as from `DescriptorStoreRO`; nodes, devices and hosts ask by
/// `dynamic_cast`, or through the functions below. All answers are about the selected node. Header only. Separate.
class DescriptorDetails {
public:
    virtual ~DescriptorDetails() = default;
    /// The camera's controller by its name in `IO::CameraChip::names()`; empty for a camera without one, or whose
    /// description does not tell.
    [[nodiscard]] virtual std::string getControllerName() const = 0;
    /// Micrometres of one step of the depth that the device delivers, 1 to 1,000,000; 0 where it is not told.
    [[nodiscard]] virtual std::uint32_t getDepthUnit() const = 0;
    /// Of the depth that the node delivers.
    [[nodiscard]] virtual DepthAlong getDepthAlong() const = 0;
};

/// The controller of the selected node's camera; empty where the store does not tell.
[[nodiscard]] inline std::string controllerNameOf(const DescriptorStoreRO& store) {
    const auto* const details = dynamic_cast<const DescriptorDetails*>(&store);
    return details == nullptr ? std::string() : details->getControllerName();
}

/// Micrometres of one step of the device's depth; 0 where the store does not tell.
[[nodiscard]] inline std::uint32_t depthUnitOf(const DescriptorStoreRO& store) {
    const auto* const details = dynamic_cast<const DescriptorDetails*>(&store);
    return details == nullptr ? 0 : details->getDepthUnit();
}

/// Along the axis where the store does not tell.
[[nodiscard]] inline DepthAlong depthAlongOf(const DescriptorStoreRO& store) {
    const auto* const details = dynamic_cast<const DescriptorDetails*>(&store);
    return details == nullptr ? DepthAlong::Axis : details->getDepthAlong();
}

} // namespace Zentara::Core
