#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "host/flash/flash_content.h"
#include "host/flash/json_place.h"
#include "host/json.h"

namespace Zentara::Host {

// The content of a storage as JSON, and back without loss: a record whose fields say all of its bytes is
// written as fields, any other as its bytes in hexadecimal, and likewise a section of unknown type. Read and
// written again, the text is the same.

/// Raised when a document of before can no longer be read.
inline constexpr int contentSchema = 1;

[[nodiscard]] Json sectionToJson(std::uint16_t uid, const FlashSection& section);
[[nodiscard]] Json contentToJson(const FlashContent& content);

/// A JSON text, in which no object may have a key twice. \throws JsonPlaceError
[[nodiscard]] Json parseJson(const std::string& text);

/// \throws JsonPlaceError with the path of the first field that is missing, surplus, or of a wrong type or
/// range.
[[nodiscard]] std::pair<std::uint16_t, FlashSection> sectionFromJson(const JsonPlace& place);
[[nodiscard]] FlashContent contentFromJson(const Json& document);

} // namespace Zentara::Host
