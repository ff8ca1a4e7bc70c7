#pragma once

#include <string>
#include <vector>

#include <zentara/host/plugins.h>

namespace Zentara::Host {

/// Every entry of the directory that the scan does not open, in no particular order: what is no file, cannot be read or
/// has another ending.
/// \throws Failure when the directory cannot be read, (Permission) for lack of permission
[[nodiscard]] std::vector<RefusedFile> entriesBesidesPlugins(const std::string& directory);

} // namespace Zentara::Host
