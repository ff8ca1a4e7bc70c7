#include "plugins/descriptions/controller.h"

#include <algorithm>
#include <cctype>

namespace Zentara::Cameras {

const char* chipName(ChipKind kind) noexcept {
    constexpr const char* names[] = {"OV0570", "VC0258", "VC0345"};
    return names[static_cast<std::size_t>(kind)];
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

} // namespace Zentara::Cameras
