#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include <zentara/rom/container.h>

#include "host/hex_bytes.h"

namespace Zentara::Host {

/// One section, without the place where it lies.
struct FlashSection {
    std::uint8_t type = 0;
    std::uint8_t flags = 0;
    Bytes data;

    bool operator==(const FlashSection&) const = default;
};

/// Everything that a storage holds, by uid.
using FlashContent = std::map<std::uint16_t, FlashSection>;

/// What a container has loaded.
[[nodiscard]] FlashContent contentOf(ROM::Container& container);

/// "systemInfo" for 1 and so on; nothing for a type without a name.
[[nodiscard]] const char* sectionTypeName(std::uint8_t type) noexcept;
[[nodiscard]] std::optional<std::uint8_t> sectionTypeFromName(const std::string& name);
/// The name, or the number.
[[nodiscard]] std::string sectionTypeText(std::uint8_t type);

/// "section 3 (configuration, 39 bytes)"
[[nodiscard]] std::string sectionText(std::uint16_t uid, const FlashSection& section);

} // namespace Zentara::Host
