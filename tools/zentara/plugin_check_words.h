#pragma once

#include <zentara/host/plugin_check.h>

#include "tools/zentara/json_output.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {

/// `zentara plugins --check FILE`. \return Verification when a step failed
ExitCode checkPluginFile(const std::string& file, bool asJson, Console& console);

} // namespace Zentara::Tool
