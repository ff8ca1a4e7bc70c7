#pragma once

#include <ostream>
#include <string>

#include <nlohmann/json.hpp>

#include <zentara/host/camera_files.h>

#include "tools/zentara/console.h"

namespace Zentara::Tool {

/// Keys stay in the order in which they were set.
using Json = nlohmann::ordered_json;

/// Null for the empty text: nobody has to know what else stands for nothing.
[[nodiscard]] inline Json orNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

/// Raised for all verbs when a key is renamed, removed or changes its meaning; new keys may come without. docs/json.md
/// has the keys of each verb. What a verb prints can be read as a document, so the two have one number.
inline constexpr int jsonSchema = documentSchema;

/// Begins what a verb prints with --json: schema, verb and, of a verb that has several, action.
[[nodiscard]] Json beginJson(const Console& console);

/// What differs: path, before and after.
[[nodiscard]] Json changesJson(const std::vector<ValueChange>& changes);

/// Bytes that are no UTF-8 print as the replacement character.
void print(std::ostream& out, const Json& json);

/// The same on a line of its own, which a reader gets at once.
void printOnOneLine(std::ostream& out, const Json& json);

} // namespace Zentara::Tool
