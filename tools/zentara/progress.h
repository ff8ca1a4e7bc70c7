#pragma once

#include <zentara/host/progress.h>

#include "tools/zentara/console.h"

namespace Zentara::Tool {

/// Shows on a terminal how far long work is. What it answers ends the work once Ctrl-C was pressed in its time.
/// \param doing "read", of bytes
[[nodiscard]] Progress shownProgress(const char* doing, Console& console);

} // namespace Zentara::Tool
