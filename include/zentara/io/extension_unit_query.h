#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include <zentara/guid.h>

namespace Zentara::IO {

/// What a receive asks of a control of an extension unit: added to the control's selector. A device need not know more
/// than the value; one that does not fails as it does for a control that it does not have. All but the value come with
/// the receive's flag, for they take no question, and in as many bytes as the control has.
enum ExtensionUnitQuery : std::int32_t {
    ExtensionUnitQuery_VALUE = 0,
    ExtensionUnitQuery_MINIMUM = 0x8200,
    ExtensionUnitQuery_MAXIMUM = 0x8300,
    ExtensionUnitQuery_STEP = 0x8400,
    ExtensionUnitQuery_ABILITIES = 0x8600, ///< one byte: bit 0 it can be got, bit 1 it can be set
    ExtensionUnitQuery_DEFAULT = 0x8700,
};

/// The unit whose control of the same number is the list of all extension units. No unit has it: theirs begin at 1.
constexpr std::uint32_t extensionUnitList = 0;

/// One of a camera's extension units.
struct ExtensionUnitEntry {
    std::uint8_t unit = 0; ///< its number
    GUID guid{};
    std::vector<std::uint8_t> selectors; ///< of the controls that it has
};

/// Adds a unit to a list as it is received: number, identifier, how many controls, their selectors. Header only.
inline void appendExtensionUnit(std::vector<std::uint8_t>& list, const ExtensionUnitEntry& entry) {
    list.push_back(entry.unit);
    const auto* const guid = reinterpret_cast<const std::uint8_t*>(&entry.guid);
    list.insert(list.end(), guid, guid + sizeof entry.guid);
    list.push_back(static_cast<std::uint8_t>(entry.selectors.size()));
    list.insert(list.end(), entry.selectors.begin(), entry.selectors.end());
}

/// The units of a list; what is cut short at its end is left out. Header only.
[[nodiscard]] inline std::vector<ExtensionUnitEntry> extensionUnitsOf(std::span<const std::uint8_t> list) {
    constexpr std::size_t fixedBytes = 1 + sizeof(GUID) + 1;
    std::vector<ExtensionUnitEntry> entries;
    while (list.size() >= fixedBytes && list.size() - fixedBytes >= list[fixedBytes - 1]) {
        const std::span<const std::uint8_t> selectors = list.subspan(fixedBytes, list[fixedBytes - 1]);
        ExtensionUnitEntry entry{list[0], {}, {selectors.begin(), selectors.end()}};
        std::memcpy(&entry.guid, list.data() + 1, sizeof entry.guid);
        entries.push_back(std::move(entry));
        list = list.subspan(fixedBytes + selectors.size());
    }
    return entries;
}

} // namespace Zentara::IO
