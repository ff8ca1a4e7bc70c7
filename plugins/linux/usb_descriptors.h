#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <zentara/guid.h>

namespace Zentara::Linux {

/// A size in which a format of a camera comes.
struct UsbFrame {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint32_t> intervals; ///< between frames, in units of 100 ns; none when any is taken
};

/// A format of a streaming interface.
struct UsbFormat {
    GUID
        guid{}; ///< what it is; for MJPEG, which has none in the descriptors, its characters in the usual form
    std::vector<UsbFrame> frames;
    [[nodiscard]] std::uint32_t fourCC() const noexcept {
        return guid.Data1;
    } ///< the first character in the low byte
};

/// A streaming interface.
struct UsbStream {
    std::uint8_t interfaceNumber = 0;
    std::uint8_t terminal = 0; ///< the output terminal that it belongs to
    std::vector<UsbFormat> formats;
};

/// An extension unit.
struct UsbExtensionUnit {
    std::uint8_t unit = 0;
    GUID guid{};
    std::uint8_t interfaceNumber = 0;    ///< of the control interface that it belongs to
    std::vector<std::uint8_t> selectors; ///< of the controls that it has, rising, from 1
};

/// Something that is wrong, and where.
struct UsbFault {
    std::size_t offset = 0; ///< of the descriptor, in bytes from the first
    std::string text;
};

/// What a camera's USB descriptors tell. Whatever they hold, reading them ends, and reads nothing past their end.
struct UsbCamera {
    std::vector<UsbExtensionUnit> units;
    std::vector<UsbStream> streams;
    std::vector<UsbFault> faults; ///< in the order in which they were found; what is wrong is left out above

    /// Null when there is none; of several with one identifier the first.
    [[nodiscard]] const UsbExtensionUnit* find(const GUID& guid) const noexcept;
    [[nodiscard]] const UsbExtensionUnit* find(std::uint8_t unit) const noexcept;
};

/// Reads the descriptors of a device as the kernel hands them out: the device's, then those of its configurations, each
/// as the device sent it.
[[nodiscard]] UsbCamera readUsbDescriptors(std::span<const std::uint8_t> bytes);

/// "offset 214: a frame of 0 x 0 pixels"
[[nodiscard]] std::string faultText(const UsbFault& fault);

} // namespace Zentara::Linux
