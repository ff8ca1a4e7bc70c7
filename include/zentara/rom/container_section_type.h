#pragma once

#include <cstdint>

namespace Zentara::ROM {

/// What a section holds: the byte stored in its header. Any byte is legal on flash; the ones below have a
/// class.
enum class ContainerSectionType : std::uint8_t {
    SystemInfo = 1,                   ///< who the camera is
    SystemCalibration = 2,            ///< lens models, extrinsics, accelerometer
    Configuration = 3,                ///< phase offsets, temperature and cyclic-error correction
    Diagnostic = 4,                   ///< what happened to it
    GradientDistortionCorrection = 5, ///< tables of phase distortion; in correction files
};

} // namespace Zentara::ROM
