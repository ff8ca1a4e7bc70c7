#pragma once

#include <cstdint>

#include <zentara/host/camera.h>
#include <zentara/host/export.h>
#include <zentara/host/hex_bytes.h>
#include <zentara/host/progress.h>

namespace Zentara::Host {

/// Which memory of a camera's controller; some have but one, which is both.
enum class ChipMemory {
    Firmware,
    Configuration, ///< holds the storage of the calibration
};

/// Reads a memory of a camera's controller piece by piece; of a real one all 64 KiB take minutes.
/// \param start the first byte, 0 to 65535 \param length 1 or more \param progress in bytes
/// \throws Failure (Usage) for what lies past the end, (Interrupted), what the camera says, with the piece. Separate, as
/// Camera::chip() is.
[[nodiscard]] ZENTARA_HOST_API Bytes readMemory(const Camera& camera, ChipMemory memory, std::uint32_t start,
                                                std::uint32_t length, const Progress& progress = {});

} // namespace Zentara::Host
