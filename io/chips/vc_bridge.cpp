#include "io/chips/vc_bridge.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include <zentara/io/xu_interface.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

#include "io/chips/little_endian.h"

namespace Zentara::IO {

using namespace VC;

VCBridge::VCBridge(XUInterface& chip, std::initializer_list<unsigned> settingRegisters) : wire(chip) {
    for (const unsigned reg : settingRegisters)
        settings.push_back({reg, unknown});
}

// A write that fails may have taken effect, so the setting is unknown until one succeeds.
void VCBridge::write(unsigned reg, unsigned value) {
    reg &= 0xFFFF;
    value &= 0xFF;
    Setting* setting = settingAt(reg);
    if (setting)
        setting->value = unknown;
    std::array<std::uint8_t, bridgePacketBytes> packet{bridgeWrite};
    Chips::putPair(packet, bridgeAddress, reg);
    packet[bridgeValue] = static_cast<std::uint8_t>(value);
    wire.send(unit, bridgeControl, packet.size(), packet.data());
    if (setting)
        setting->value = static_cast<int>(value);
}

// Always asked for: what is remembered serves only to leave out writes.
unsigned VCBridge::read(unsigned reg) {
    std::array<std::uint8_t, bridgePacketBytes> packet{bridgeRead};
    Chips::putPair(packet, bridgeAddress, reg);
    wire.recv(unit, bridgeControl, packet.size(), packet.data(), false);
    return packet[bridgeValue];
}

void VCBridge::bring(unsigned setting, unsigned value) {
    const Setting* known = settingAt(setting);
    if (!known || known->value != static_cast<int>(value))
        write(setting, value);
}

void VCBridge::assume(unsigned setting, unsigned value) noexcept {
    if (Setting* const known = settingAt(setting))
        known->value = static_cast<int>(value);
}

void VCBridge::forget() noexcept {
    for (Setting& setting : settings)
        setting.value = unknown;
}

VCBridge::Setting* VCBridge::settingAt(unsigned reg) noexcept {
    const auto found = std::find_if(settings.begin(), settings.end(),
                                    [reg](const Setting& setting) { return setting.reg == reg; });
    return found == settings.end() ? nullptr : &*found;
}

void checkMemoryRange(unsigned start, unsigned length) {
    // As a difference, for a sum of two 32-bit numbers may wrap.
    if (start > memoryBytes || length > memoryBytes - start) {
        throw Plugin::IOPluginException(
            Utils::Format("% bytes from 0x%{:X4} pass the end of the memory at 0x%{:X}") % length % start %
            memoryBytes);
    }
}

} // namespace Zentara::IO
