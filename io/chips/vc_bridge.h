#pragma once

#include <initializer_list>
#include <vector>

#include "io/chips/vc_bridge_protocol.h"

namespace Zentara::IO {

class XUInterface;

/// The registers inside a VC0258 or VC0345 bridge. Some of them are settings, which are remembered so that
/// they are sent only when they change. The caller holds the chip's mutex.
class VCBridge {
public:
    VCBridge(XUInterface& chip, std::initializer_list<unsigned> settingRegisters);

    /// Sends the low 8 bits in any case; of a setting, they are remembered.
    void write(unsigned reg, unsigned value);
    [[nodiscard]] unsigned read(unsigned reg);

    /// Brings a setting to a value, without a transfer if it has it.
    void bring(unsigned setting, unsigned value);

    /// Takes a setting to have a value, as a reading told it. Nothing is sent.
    void assume(unsigned setting, unsigned value) noexcept;

    /// Makes the settings unknown, so that each is sent with its next use.
    void forget() noexcept;

private:
    struct Setting {
        unsigned reg;
        int value; ///< what the bridge has, or `unknown` until it acknowledged a value
    };
    static constexpr int unknown = -1;

    [[nodiscard]] Setting* settingAt(unsigned reg) noexcept;

    XUInterface& wire;
    std::vector<Setting> settings;
};

/// \throws IOPluginException when a read of `length` bytes from `start` passes the end of a 64 KiB memory.
void checkMemoryRange(unsigned start, unsigned length);

} // namespace Zentara::IO
