#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include <zentara/io/camera_chip.h>
#include <zentara/io/tof_registers.h>

namespace Zentara::IO {

/// What differs between controllers, one row for each.
struct CameraChip::Row {
    const char* name;
    std::uint32_t product; ///< its number in the list of a camera's modules
    ::GUID unitGuid;
    unsigned unit;
    /// The control whose length tells the chip from others with the same extension unit, and that length; 0 where the
    /// unit is its own.
    std::uint32_t tellingControl;
    int tellingBytes;
    unsigned modulationMeta; ///< the meta code of the modulation frequency; 0 where there is none
    std::span<const unsigned> megahertz;
    std::unique_ptr<CameraChip> (*bind)(const Row& row, VideoDeviceProxy& proxy, ChipListener listener);
    std::unique_ptr<TofRegisters> (*reach)(const BackEndWay& way);
    std::string (*meaning)(const ChipTransfer& transfer);
};

} // namespace Zentara::IO
