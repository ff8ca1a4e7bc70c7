#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <zentara/compression_type.h>
#include <zentara/frame_format.h>

#include "plugins/v4l2/device_file.h"
#include "plugins/v4l2/picture.h"

namespace Zentara::V4l2 {

/// A mode that a driver offers.
struct DriverMode {
    std::uint32_t fourCC = 0;
    FrameSize size;
    std::uint32_t numerator = 0; ///< of the time between two frames, in seconds; 0: the driver doesn't say
    std::uint32_t denominator = 0;

    /// Frames a second, rounded; 0 when the driver doesn't say.
    [[nodiscard]] int rate() const noexcept;
};

/// What a stream is to be.
struct WantedStream {
    Delivery delivery = Delivery::Color;
    std::uint32_t fourCC = 0; ///< the description's; 0: the first that can be delivered
    CompressionType compression = CompressionType_NONE;
    FrameSize size;   ///< 0 x 0: the camera's own
    int rate = 0;     ///< frames a second
    std::string name; ///< of the mode, for messages
};

/// All modes that a driver lists, in its order, of one size the fastest first; at most a few thousand. Of sizes that it
/// gives as a range those that have a name, of rates the usual ones.
[[nodiscard]] std::vector<DriverMode> modesOf(const DeviceFile& file);

/// The mode that fits: of several the first that the camera need not compress. Depth of a described format may be higher
/// by a whole number, for cameras that send planes below each other.
/// \throws Plugin::ConfigurationPluginException with what the driver offers
[[nodiscard]] DriverMode chooseMode(const DeviceFile& file, const std::vector<DriverMode>& modes,
                                    const WantedStream& wanted);

/// The kernel's name for a format of a description: what USB calls YUY2 it calls YUYV.
[[nodiscard]] std::uint32_t kernelFourCC(std::uint32_t described) noexcept;

} // namespace Zentara::V4l2
