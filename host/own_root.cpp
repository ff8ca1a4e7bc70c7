#include <zentara/host/own_root.h>

#include <zentara/utils/environment_variable.h>
#include <zentara/utils/files.h>
#include <zentara/utils/install_root.h>

#include "host/files/paths.h"
#include "utils/platform/program.h"

namespace Zentara::Host {
namespace {

/// The library answers with its built-in directory when nothing else is known.
bool rootIsConfigured() {
    std::string root;
    return Utils::getNativeZTRootDirectory(root) != 0 ||
           root != Utils::addTrailingSeparator(ZENTARA_FALLBACK_ROOT);
}

} // namespace

bool useRootIfNone(const std::string& root) {
    Utils::EnvironmentVariable variable("ZENTARASDK_ROOT");
    const std::string directory = Utils::addTrailingSeparator(root);
    if (variable.isDefined() || rootIsConfigured() || !isDirectory(directory + "bin/Plugins"))
        return false;
    variable.setValue(directory.c_str());
    return true;
}

bool useProgramRootIfNone() {
    const std::string bin = Utils::getDirectory(Utils::canonicalPath(Utils::Platform::executablePath()));
    const std::string root = Utils::getDirectory(bin.substr(0, bin.size() - 1));
    return bin == root + "bin/" && useRootIfNone(root);
}

} // namespace Zentara::Host
