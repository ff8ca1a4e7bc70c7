#include "tools/zentara/program_root.h"

#include <string>

#include <zentara/utils/environment_variable.h>
#include <zentara/utils/files.h>
#include <zentara/utils/install_root.h>

#include "host/files/paths.h"
#include "utils/platform/program.h"

namespace Zentara::Tool {
namespace {

/// The library answers with its built-in directory when nothing else is known.
bool rootIsConfigured() {
    std::string root;
    return Utils::getNativeZTRootDirectory(root) != 0 ||
           root != Utils::addTrailingSeparator(ZENTARA_FALLBACK_ROOT);
}

} // namespace

void useProgramRoot() {
    Utils::EnvironmentVariable variable("ZENTARASDK_ROOT");
    if (variable.isDefined() || rootIsConfigured())
        return;
    const std::string bin = Utils::getDirectory(Utils::canonicalPath(Utils::Platform::executablePath()));
    const std::string root = Utils::getDirectory(bin.substr(0, bin.size() - 1));
    if (bin == root + "bin/" && isDirectory(bin + "Plugins"))
        variable.setValue(root.c_str());
}

} // namespace Zentara::Tool
