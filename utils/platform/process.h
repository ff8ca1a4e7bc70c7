#pragma once

#include <string>
#include <vector>

namespace Zentara::Utils::Platform {

/// Appends the file names (UTF-8, without directory) of the programs that run now. False if they cannot be
/// listed. Programs that end meanwhile, or may not be looked at, are left out.
bool listProcesses(std::vector<std::string>& names);

} // namespace Zentara::Utils::Platform
