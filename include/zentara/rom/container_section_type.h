#pragma once

#include <cstdint>

namespace Zentara::ROM {

/// What a section holds: the byte stored in its header. Any byte is legal on flash; the ones below have a
/// class.
enum class ContainerSectionType : std::uint8_t {
    SystemInfo = 1,
    SystemCalibration = 2,
    Configuration = 3,
    Diagnostic = 4,
    GradientDistortionCorrection = 5,
};

} // namespace Zentara::ROM
