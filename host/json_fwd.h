#pragma once

#include <nlohmann/json_fwd.hpp>

namespace Zentara::Host {

/// Keys stay in the order in which they were set. For headers that only name it: the whole takes a compiler a second.
using Json = nlohmann::ordered_json;

} // namespace Zentara::Host
