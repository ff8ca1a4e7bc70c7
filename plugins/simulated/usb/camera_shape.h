#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <zentara/guid.h>

#include "plugins/descriptions/camera_description.h"
#include "plugins/simulated/firmware/firmware.h"

namespace Zentara::Simulated {

/// How a picture's pixels are written on the wire.
enum class Coding : std::uint8_t {
    Y16, ///< 16 bits a pixel; of a picture of double height the lower half is confidence
    Z16, ///< the same, by the name for depth
    Yuy2,
    Mjpeg,
};

struct PictureSize {
    std::uint16_t width = 0;
    std::uint16_t height = 0;

    /// Also what a compressed picture never passes.
    [[nodiscard]] std::size_t bytes() const noexcept { return std::size_t{width} * height * 2; }
};

struct VideoFormat {
    Coding coding;
    std::vector<PictureSize> sizes; ///< the usual one first
};

/// One streaming interface with the chain of units that feeds it.
struct StreamShape {
    std::vector<VideoFormat> formats;
    bool hasControls = false;  ///< exposure, brightness, contrast, gain
    bool hasExtension = false; ///< the controller's unit
};

/// The controller's unit as the camera's descriptors tell of it.
struct ExtensionShape {
    ::GUID guid{};
    std::uint8_t number = 0;
    std::vector<std::uint32_t> selectors;
};

/// What a camera at USB level is to its host.
struct CameraShape {
    std::uint16_t vendorId = 0;
    std::uint16_t productId = 0;
    std::uint16_t revision = 0;
    std::string vendorName;
    std::string productName;
    std::string serialNumber;
    std::vector<StreamShape> streams;
    ExtensionShape extension;
    bool hasMicrophone = true;
    bool isochronous = false; ///< else bulk
};

/// The intervals between pictures that every format offers, in units of 100 ns, the usual one first.
inline constexpr std::uint32_t pictureIntervals[] = {166666, 333333, 666666};

/// A described camera: depth, in front of the controller's unit, and colour.
[[nodiscard]] CameraShape shapeOf(const Cameras::CameraDescription& description, const Firmware* firmware);

/// A camera without a controller, as others make them: colour as JPEG pictures, and depth. On two interfaces both can
/// be had at once; on one only either.
[[nodiscard]] CameraShape plainShape(bool oneInterface);

// What stands where, the same for every shape: interface 0 controls the video, the streaming interfaces follow, then the
// two of the microphone. Each chain has its own ten numbers of units.
inline constexpr std::uint8_t controlInterface = 0;
inline constexpr std::uint8_t firstStreamInterface = 1;
inline constexpr std::uint8_t firstStreamEndpoint = 1; ///< then one for each stream, then the microphone's
inline constexpr std::uint8_t unitsPerChain = 10;
inline constexpr std::uint8_t cameraTerminal = 1; ///< within its chain
inline constexpr std::uint8_t processingUnit = 2;
inline constexpr std::uint8_t outputTerminal = 3;
inline constexpr std::uint8_t microphoneFeatures = 2; ///< a unit of the microphone's own

/// The chain with the controller's unit keeps the numbers below ten for it.
[[nodiscard]] constexpr std::uint8_t unitOf(std::size_t stream, std::uint8_t unit) {
    return static_cast<std::uint8_t>(unitsPerChain * (stream + 1) + unit);
}
[[nodiscard]] inline std::uint8_t audioInterface(const CameraShape& shape) {
    return static_cast<std::uint8_t>(firstStreamInterface + shape.streams.size());
}
[[nodiscard]] inline std::uint8_t audioEndpoint(const CameraShape& shape) {
    return static_cast<std::uint8_t>(firstStreamEndpoint + shape.streams.size());
}

} // namespace Zentara::Simulated
