#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <zentara/guid.h>

#include "plugins/simulated/firmware/register_file.h"

namespace Zentara::Simulated {

using Bytes = std::vector<std::uint8_t>;

/// The firmware of one camera controller, packet in and packet out: what a host sees of it through the
/// extension unit, and nothing of how a host would use it. A packet that the firmware refuses is a stall and
/// throws `IOPluginException` with the reason. *Separate*: a `Port` serialises the calls.
class Firmware {
public:
    virtual ~Firmware() = default;
    Firmware(const Firmware&) = delete;
    Firmware& operator=(const Firmware&) = delete;

    /// The controller's: "OV0570".
    [[nodiscard]] const char* name() const noexcept { return chip; }
    /// The extension unit that a host has to select, and its number on the camera.
    [[nodiscard]] const ::GUID& guid() const noexcept { return extensionUnit; }
    [[nodiscard]] std::uint32_t unit() const noexcept { return unitNumber; }
    /// Bytes of a control; nothing for a control that the unit does not have.
    [[nodiscard]] std::optional<std::size_t> length(std::uint32_t selector) const;
    /// The controls that there are.
    [[nodiscard]] std::vector<std::uint32_t> selectors() const;
    /// False for a control that can only be read.
    [[nodiscard]] bool canBeSent(std::uint32_t selector) const { return !controls.at(selector).readOnly; }
    /// Whether a packet in a SET is the question of the GET that follows: on a wire where a GET carries nothing to the
    /// camera, it has to come before.
    [[nodiscard]] bool asks(std::uint32_t selector, const Bytes& packet) const {
        return controls.at(selector).isQuestion(packet);
    }
    /// A SET; `packet` has the control's length.
    void set(std::uint32_t selector, const Bytes& packet) { controls.at(selector).set(packet); }
    /// A GET; `request` is what the host left in its buffer, of the control's length. Returns the reply.
    [[nodiscard]] Bytes get(std::uint32_t selector, const Bytes& request) {
        return controls.at(selector).get(request);
    }
    /// The image that a firmware read of the whole memory yields.
    [[nodiscard]] virtual const Bytes& flash() const noexcept = 0;
    /// The same for the configuration area.
    [[nodiscard]] virtual const Bytes& configuration() const noexcept = 0;
    /// The registers of the time-of-flight controller; null when the camera has none.
    [[nodiscard]] virtual RegisterFile* tofRegisters() noexcept = 0;

protected:
    struct Control {
        std::size_t bytes;
        std::function<void(const Bytes& packet)> set;
        std::function<Bytes(const Bytes& request)> get;
        std::function<bool(const Bytes& packet)> isQuestion;
        bool readOnly = false;
    };
    using Controls = std::map<std::uint32_t, Control>; ///< by selector

    Firmware(const char* name, const ::GUID& guid, std::uint32_t unit, Controls all)
        : chip(name), extensionUnit(guid), unitNumber(unit), controls(std::move(all)) {}

private:
    const char* const chip;
    const ::GUID extensionUnit;
    const std::uint32_t unitNumber;
    const Controls controls;
};

/// Throws `IOPluginException` "CHIP stalled: REASON".
[[noreturn]] void stall(const Firmware& model, const std::string& reason);

/// 0x and at least two digits.
[[nodiscard]] std::string hexText(std::uint32_t value);

/// 64 KiB in which no two 32-byte pieces are alike, different for each seed.
[[nodiscard]] Bytes patternFlash(std::uint8_t seed);

} // namespace Zentara::Simulated
