#include "plugins/simulated/controllers/controller_model.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::Simulated {

const char* chipName(ChipKind kind) noexcept {
    switch (kind) {
    case ChipKind::OV0570:
        return "OV0570";
    case ChipKind::VC0258:
        return "VC0258";
    case ChipKind::VC0345:
        return "VC0345";
    }
    return "";
}

std::optional<ChipKind> chipKindFromName(const std::string& name) {
    const auto sameLetter = [](unsigned char left, unsigned char right) {
        return std::toupper(left) == std::toupper(right);
    };
    for (const ChipKind kind : {ChipKind::OV0570, ChipKind::VC0258, ChipKind::VC0345}) {
        const std::string candidate = chipName(kind);
        if (std::equal(name.begin(), name.end(), candidate.begin(), candidate.end(), sameLetter))
            return kind;
    }
    return std::nullopt;
}

void stall(const ControllerModel& model, const std::string& reason) {
    throw Plugin::IOPluginException(std::string(chipName(model.kind())) + " stalled: " + reason);
}

std::string hexText(std::uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%02X", static_cast<unsigned>(value));
    return text;
}

Bytes patternFlash(std::uint8_t seed) {
    Bytes image(0x10000);
    for (std::size_t i = 0; i < image.size(); ++i) {
        // The low byte of the piece's number goes into its even bytes, the high byte into its odd ones.
        image[i] = static_cast<std::uint8_t>(seed + i * 31 + (i % 2 == 0 ? i >> 5 : i >> 13));
    }
    return image;
}

} // namespace Zentara::Simulated
