#pragma once

#include <string>

#include <zentara/export.h>

namespace Zentara::Utils {

/// Whether a process runs whose program file has this name, extension included; letter case is ignored on
/// Windows. False also when the processes cannot be listed. An empty name finds nothing. Safe.
ZENTARA_API bool findProcess(const std::string& name);

/// Whether a process runs whose program file's name contains `name`, ignoring letter case. `found` receives
/// the full name of the first one, and stays as it is when there is none. An empty name finds nothing.
/// Safe.
ZENTARA_API bool findSimilarProcess(const std::string& name, std::string& found);

} // namespace Zentara::Utils
