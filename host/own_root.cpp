#include <zentara/host/own_root.h>

#include <atomic>

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

/// That the variable is this program's own doing.
std::atomic<bool> isOwn{false};

} // namespace

bool useRootIfNone(const std::string& root) {
    Utils::EnvironmentVariable variable("ZENTARASDK_ROOT");
    const std::string directory = Utils::addTrailingSeparator(root);
    if (variable.isDefined() || rootIsConfigured() || !isDirectory(directory + "bin/Plugins"))
        return false;
    variable.setValue(directory.c_str());
    isOwn = true;
    return true;
}

InstallRoot installRoot() {
    InstallRoot root;
    static_cast<void>(Utils::getNativeZTRootDirectory(root.directory));
    if (Utils::EnvironmentVariable("ZENTARASDK_ROOT").isDefined())
        root.origin = isOwn ? "where the program lies" : "from the environment variable ZENTARASDK_ROOT";
    else if (rootIsConfigured())
        root.origin = "from the registry or, off Windows, /etc/zentara/sdk.ini";
    else
        root.origin = "built in, for nothing names another one";
    return root;
}

bool useProgramRootIfNone() {
    const std::string bin = Utils::getDirectory(Utils::canonicalPath(Utils::Platform::executablePath()));
    const std::string root = Utils::getDirectory(bin.substr(0, bin.size() - 1));
    return bin == root + "bin/" && useRootIfNone(root);
}

} // namespace Zentara::Host
