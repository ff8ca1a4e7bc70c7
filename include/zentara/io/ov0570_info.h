#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <zentara/export.h>

namespace Zentara::IO {

/// The firmware version of an OV0570 bridge, most significant byte first. A copyable value. Separate.
struct OV0570FirmwareVersion {
    std::array<std::uint8_t, 4> bytes{};

    /// The four bytes as one number.
    [[nodiscard]] constexpr std::uint32_t value() const noexcept {
        return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 |
               bytes[3];
    }
};

/// One device on the camera's internal bus, as the bridge describes it. The codes are kept as they came. A copyable
/// value. Separate.
struct OV0570DeviceID {
    std::uint8_t addressWidth = 0; ///< code: 0 one byte, 1 two, 2 three, 3 four
    std::uint8_t dataWidth = 0;    ///< code: 0 one byte, anything else two
    std::uint8_t flag = 0;         ///< of unknown meaning
    std::uint16_t busAddress = 0;  ///< 0x0021 is the time-of-flight controller, 0x9711 the colour sensor
    std::uint8_t extra = 0xFF;     ///< 0xFF for the bridge, which tells none

    /// The bits of a register address, and of a value, that the device takes.
    [[nodiscard]] constexpr std::uint32_t addressMask() const noexcept {
        return addressWidth >= 3 ? 0xFFFFFFFFU : (1U << (8 * (addressWidth + 1))) - 1;
    }
    [[nodiscard]] constexpr std::uint32_t dataMask() const noexcept {
        return dataWidth == 0 ? 0xFFU : 0xFFFFU;
    }
};

/// What an OV0570 bridge tells about itself and the devices behind it. A copyable value. Separate.
struct OV0570Info {
    /// Bytes of the reply that carries it, and the further devices that fit.
    static constexpr std::size_t replyBytes = 64;
    static constexpr std::size_t maxFurtherDevices = 12;

    std::uint8_t info = 0; ///< of unknown meaning
    OV0570FirmwareVersion firmwareVersion;
    /// Three numbers of unknown meaning, from bytes 5, 8 and 10 of the reply.
    std::array<std::uint16_t, 3> words{};
    /// Index 0 is the bridge itself.
    std::vector<OV0570DeviceID> devices;

    /// Reads a control-information reply. \throws IOPluginException when it claims more further devices than
    /// it can hold, naming both numbers.
    [[nodiscard]] ZENTARA_API static OV0570Info fromReply(const std::array<std::uint8_t, replyBytes>& reply);
};

} // namespace Zentara::IO
