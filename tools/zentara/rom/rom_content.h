#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include <zentara/rom/container.h>

#include "tools/zentara/rom/hex_bytes.h"

namespace Zentara::Tool {

/// One section, without the place where it lies.
struct RomSection {
    std::uint8_t type = 0;
    std::uint8_t flags = 0;
    Bytes data;

    bool operator==(const RomSection&) const = default;
};

/// Everything that a storage holds, by uid.
using RomContent = std::map<std::uint16_t, RomSection>;

/// What a container has loaded.
[[nodiscard]] RomContent contentOf(ROM::Container& container);

/// "systemInfo" for 1 and so on; nothing for a type without a name.
[[nodiscard]] const char* sectionTypeName(std::uint8_t type) noexcept;
[[nodiscard]] std::optional<std::uint8_t> sectionTypeFromName(const std::string& name);
/// The name, or the number.
[[nodiscard]] std::string sectionTypeText(std::uint8_t type);

/// "section 3 (configuration, 39 bytes)"
[[nodiscard]] std::string sectionText(std::uint16_t uid, const RomSection& section);

} // namespace Zentara::Tool
