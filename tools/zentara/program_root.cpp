#include "tools/zentara/program_root.h"

#include <string>

#include <zentara/host/own_root.h>
#include <zentara/utils/files.h>

#include "host/files/paths.h"
#include "utils/platform/program.h"

namespace Zentara::Tool {

void useProgramRoot() {
    const std::string bin = Utils::getDirectory(Utils::canonicalPath(Utils::Platform::executablePath()));
    const std::string root = Utils::getDirectory(bin.substr(0, bin.size() - 1));
    if (bin == root + "bin/")
        Host::useRootIfNone(root);
}

} // namespace Zentara::Tool
