#pragma once

#include <ostream>
#include <string>

#include "host/json.h"
#include "host/json_differences.h"
#include "tools/zentara/console.h"

namespace Zentara::Tool {

/// Raised for all verbs when a key is renamed, removed or changes its meaning; new keys may come without. docs/json.md
/// has the keys of each verb.
inline constexpr int jsonSchema = 3;

/// Begins what a verb prints with --json: schema, verb and, of a verb that has several, action.
[[nodiscard]] Json beginJson(const Console& console);
[[nodiscard]] inline Json beginJson(const char* verb) { return {{"schema", jsonSchema}, {"verb", verb}}; }

/// Bytes that are no UTF-8 print as the replacement character.
void print(std::ostream& out, const Json& json);

/// The same on a line of its own, which a reader gets at once.
void printOnOneLine(std::ostream& out, const Json& json);

} // namespace Zentara::Tool
