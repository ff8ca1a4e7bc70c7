#pragma once

#include <ostream>

#include <nlohmann/json.hpp>

namespace Zentara::Tool {

/// Keys stay in the order in which they were set.
using Json = nlohmann::ordered_json;

/// Raised when a key is renamed, removed or changes its meaning; new keys may come without.
inline constexpr int jsonSchema = 1;

/// Begins what a verb prints with --json.
[[nodiscard]] inline Json beginJson(const char* verb) { return {{"schema", jsonSchema}, {"verb", verb}}; }

/// Bytes that are no UTF-8 print as the replacement character.
inline void print(std::ostream& out, const Json& json) {
    out << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

} // namespace Zentara::Tool
