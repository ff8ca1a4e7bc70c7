#pragma once

#include <string>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// What `zentara info --json` tells, as a page for people: with units, and where each number comes from.
[[nodiscard]] std::string infoPage(const Json& info);

} // namespace Zentara::Tool
