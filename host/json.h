#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "host/json_fwd.h"

namespace Zentara::Host {

/// Null for the empty text: nobody has to know what else stands for nothing.
[[nodiscard]] inline Json orNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

} // namespace Zentara::Host
