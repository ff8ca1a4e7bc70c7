#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <zentara/host/export.h>

namespace Zentara::Host {

using Bytes = std::vector<std::uint8_t>;

/// "a51d00". Safe.
[[nodiscard]] ZENTARA_HOST_API std::string toHex(std::span<const std::uint8_t> bytes);

/// The bytes of such a text, in either case; nothing for an odd number of digits or another character. Safe.
[[nodiscard]] ZENTARA_HOST_API std::optional<Bytes> fromHex(const std::string& text);

} // namespace Zentara::Host
