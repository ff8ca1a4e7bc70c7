#pragma once

#include <string>
#include <vector>

namespace Zentara::Tool {

/// An entry of the plug-in directory that is not registered, and why. The texts are fit for a terminal.
struct RefusedFile {
    std::string path;
    std::string step;
    std::string text;
    std::string found;
    std::string wanted;
    std::string remedy;
    bool isFatal = false; ///< it ends every program that looks for plug-ins
};

/// Every entry of the directory that the scan does not open, in no particular order: what is no file, cannot be read or
/// has another ending.
/// \throws Failure when the directory cannot be read, exit code 5 for lack of permission
[[nodiscard]] std::vector<RefusedFile> entriesBesidesPlugins(const std::string& directory);

} // namespace Zentara::Tool
