#pragma once

#include <string>

#include <zentara/host/stream_info.h>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// What `zentara info --json` tells, as a page for people: with units, and where each number comes from.
[[nodiscard]] std::string infoPage(const CameraInfo& camera, const Json& info);

} // namespace Zentara::Tool
