#pragma once

#include <cstdint>
#include <string>

#include <zentara/host/export.h>

namespace Zentara::Host {

/// What a stream delivers. A camera has one of a kind, or none.
enum class Kind {
    Depth, ///< pictures of distances
    Color, ///< pictures of eight bits for red, green and blue each
    Audio, ///< sound
};

/// "depth", "color" or "audio".
[[nodiscard]] ZENTARA_HOST_API const char* kindName(Kind kind) noexcept;

/// One of the ways in which a camera can stream. A plain value, which the camera makes; the fields that its kind has
/// not are 0. Separate.
struct ZENTARA_HOST_API Mode {
    Kind kind = Kind::Depth;  ///< what it delivers
    std::string name;         ///< the camera's own, unique among its modes: "DEFF2FR60CM0S0"
    std::uint32_t width = 0;  ///< of a picture, in pixels
    std::uint32_t height = 0; ///< of a picture, in pixels
    std::uint32_t rate = 0;   ///< frames a second; of sound samples a second and channel
    /// Of depth: 0 or 1, the two ways in which a camera can measure; what they are is its own affair. Corrections are
    /// given for each.
    int cameraMode = 0;
    bool saturation = false;             ///< of depth: pixels with too much light are marked
    std::int32_t powerLineFrequency = 0; ///< of colour: a `PowerLineFrequency`
    std::int32_t compression = 0;        ///< of colour: a `CompressionType`
    std::int32_t channels = 0;           ///< of sound
    std::int32_t bitsPerSample = 0;      ///< of sound

    /// What a person asks for: "320x240@60"; of sound "2 channels, 16 bits, 48000 Hz".
    [[nodiscard]] std::string text() const;

    /// Whether that is what is meant: by the name in any case, "320x240@60" or "320x240". Sound goes by its name.
    [[nodiscard]] bool isCalled(const std::string& word) const;

    friend bool operator==(const Mode&, const Mode&) = default;
};

} // namespace Zentara::Host
