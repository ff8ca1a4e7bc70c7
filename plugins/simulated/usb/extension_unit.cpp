#include "plugins/simulated/usb/extension_unit.h"

#include <zentara/plugin/plugin_exceptions.h>

#include "plugins/simulated/usb/control_table.h"

namespace Zentara::Simulated {

std::optional<Bytes> ExtensionUnit::answer(const Setup& setup, const Bytes& data) try {
    const Firmware& firmware = port.model();
    const std::uint32_t selector = setup.value >> 8;
    const std::optional<std::size_t> bytes = firmware.length(selector);
    if (!bytes)
        return std::nullopt;
    switch (setup.request) {
    case SetCur:
        take(selector, data);
        return Bytes();
    case GetCur:
        return fetch(selector, *bytes);
    case GetLen:
        return Bytes{static_cast<std::uint8_t>(*bytes), static_cast<std::uint8_t>(*bytes >> 8)};
    case GetInfo:
        return Bytes{canBeReadAndSet}; // also what is only read is asked by a SET
    case GetMin:
    case GetDef:
        return Bytes(*bytes, 0);
    case GetMax:
        return Bytes(*bytes, 0xFF);
    case GetRes:
        return Bytes(*bytes, 1);
    default:
        return std::nullopt;
    }
} catch (const Plugin::PluginException&) { // the firmware's way to stall
    return std::nullopt;
}

void ExtensionUnit::take(std::uint32_t selector, const Bytes& packet) {
    questions.erase(selector);
    if (packet.size() == port.model().length(selector) && port.model().asks(selector, packet))
        questions[selector] = packet;
    else
        port.set(port.model().unit(), selector, packet.data(), packet.size());
}

Bytes ExtensionUnit::fetch(std::uint32_t selector, std::size_t bytes) {
    Bytes packet(bytes);
    if (const auto question = questions.extract(selector))
        packet = question.mapped();
    port.get(port.model().unit(), selector, packet.data(), packet.size());
    return packet;
}

} // namespace Zentara::Simulated
