#include "plugins/simulated/firmware/firmware.h"

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

namespace Zentara::Simulated {

std::optional<std::size_t> Firmware::length(std::uint32_t selector) const {
    const auto found = controls.find(selector);
    return found == controls.end() ? std::nullopt : std::optional(found->second.bytes);
}

std::vector<std::uint32_t> Firmware::selectors() const {
    std::vector<std::uint32_t> all;
    for (const auto& [selector, control] : controls)
        all.push_back(selector);
    return all;
}

void stall(const Firmware& model, const std::string& reason) {
    throw Plugin::IOPluginException(std::string(model.name()) + " stalled: " + reason);
}

std::string hexText(std::uint32_t value) { return Utils::Format("0x%{:X2}") % value; }

Bytes patternFlash(std::uint8_t seed) {
    Bytes image(0x10000);
    for (std::size_t i = 0; i < image.size(); ++i) {
        // The low byte of the piece's number goes into its even bytes, the high byte into its odd ones.
        image[i] = static_cast<std::uint8_t>(seed + i * 31 + (i % 2 == 0 ? i >> 5 : i >> 13));
    }
    return image;
}

} // namespace Zentara::Simulated
