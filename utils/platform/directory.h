#pragma once

#include <string>
#include <vector>

namespace Zentara::Utils::Platform {

enum class DirectoryWalk {
    Complete,
    Missing, ///< no such directory
    Failed   ///< names holds what was found until then, lastErrorText() tells the reason
};

/// Appends the names (UTF-8) of the regular files in a directory, in the system's order; links count as what
/// they point to. An empty path is the working directory.
DirectoryWalk listFiles(const std::string& directory, std::vector<std::string>& names);

/// Whether names that differ in letter case only mean the same file.
bool fileNamesIgnoreCase() noexcept;

} // namespace Zentara::Utils::Platform
