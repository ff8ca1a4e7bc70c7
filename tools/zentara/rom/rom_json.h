#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "tools/zentara/json_output.h"
#include "tools/zentara/rom/json_place.h"
#include "tools/zentara/rom/rom_content.h"

namespace Zentara::Tool {

// The content of a storage as JSON, and back without loss: a record whose fields say all of its bytes is
// written as fields, any other as its bytes in hexadecimal, and likewise a section of unknown type. Read and
// written again, the text is the same.

/// Raised when a document of before can no longer be read.
inline constexpr int romJsonSchema = 1;

[[nodiscard]] Json sectionToJson(std::uint16_t uid, const RomSection& section);
[[nodiscard]] Json contentToJson(const RomContent& content);

/// A JSON text, in which no object may have a key twice. \throws RomJsonError
[[nodiscard]] Json parseJson(const std::string& text);

/// \throws RomJsonError with the path of the first field that is missing, surplus, or of a wrong type or
/// range.
[[nodiscard]] std::pair<std::uint16_t, RomSection> sectionFromJson(const JsonPlace& place);
[[nodiscard]] RomContent contentFromJson(const Json& document);

} // namespace Zentara::Tool
