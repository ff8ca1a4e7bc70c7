#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace Zentara::Host {

/// Keys stay in the order in which they were set.
using Json = nlohmann::ordered_json;

/// Null for the empty text: nobody has to know what else stands for nothing.
[[nodiscard]] inline Json orNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

} // namespace Zentara::Host
