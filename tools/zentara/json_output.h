#pragma once

#include <ostream>
#include <string>

#include "host/json.h"
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

/// Where two values differ, one element {path, before, after} for each leaf: "records/0/fx". What only one of them has
/// is null in the other.
[[nodiscard]] Json differencesBetween(const Json& before, const Json& after);

/// A line for each: "records/0/fx: 224.5 -> 230.5"; cut where a value is long.
[[nodiscard]] std::string differencesText(const Json& differences);

} // namespace Zentara::Tool
