#pragma once

#include <string>

#include "host/json.h"

namespace Zentara::Host {

/// Where two values differ, one element {path, before, after} for each leaf: "records/0/fx". What only one of them has
/// is null in the other.
[[nodiscard]] Json differencesBetween(const Json& before, const Json& after);

/// A line for each: "records/0/fx: 224.5 -> 230.5"; cut where a value is long.
[[nodiscard]] std::string differencesText(const Json& differences);

/// A value's JSON, in ASCII, as such a line has it: "nothing" for null, cut where it is long.
[[nodiscard]] std::string cutJson(const std::string& value);

} // namespace Zentara::Host
