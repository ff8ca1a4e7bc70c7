#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <zentara/guid.h>

#include "plugins/descriptions/controller.h"
#include "plugins/simulated/firmware/register_file.h"

namespace Zentara::Simulated {

using Bytes = std::vector<std::uint8_t>;
using Cameras::ChipKind;
using Cameras::chipKindFromName;
using Cameras::chipName;

/// The firmware of one camera controller, packet in and packet out: what a host sees of it through the
/// extension unit, and nothing of how a host would use it. A packet that the firmware refuses is a stall and
/// throws `IOPluginException` with the reason. *Separate*: a `Port` serialises the calls.
class Firmware {
public:
    virtual ~Firmware() = default;
    [[nodiscard]] virtual ChipKind kind() const noexcept = 0;
    /// The extension unit that a host has to select, and its number on the camera.
    [[nodiscard]] virtual const ::GUID& guid() const noexcept = 0;
    [[nodiscard]] virtual std::uint32_t unit() const noexcept = 0;
    /// Bytes of a control; nothing for a control that the unit does not have.
    [[nodiscard]] virtual std::optional<std::size_t> length(std::uint32_t selector) const = 0;
    /// A SET; `packet` has the control's length.
    virtual void set(std::uint32_t selector, const Bytes& packet) = 0;
    /// A GET; `request` is what the host left in its buffer, of the control's length. Returns the reply.
    [[nodiscard]] virtual Bytes get(std::uint32_t selector, const Bytes& request) = 0;
    /// The image that a firmware read of the whole memory yields.
    [[nodiscard]] virtual const Bytes& flash() const noexcept = 0;
    /// The same for the configuration area.
    [[nodiscard]] virtual const Bytes& configuration() const noexcept = 0;
    /// The registers of the time-of-flight controller; null when the camera has none.
    [[nodiscard]] virtual RegisterFile* tofRegisters() noexcept = 0;
};

/// Throws `IOPluginException` "CHIP stalled: REASON".
[[noreturn]] void stall(const Firmware& model, const std::string& reason);

/// 0x and at least two digits.
[[nodiscard]] std::string hexText(std::uint32_t value);

/// 64 KiB in which no two 32-byte pieces are alike, different for each seed.
[[nodiscard]] Bytes patternFlash(std::uint8_t seed);

} // namespace Zentara::Simulated
