#include "core/failing_root.h"

#include <zentara/utils/environment_variable.h>
#include <zentara/utils/install_root.h>

namespace {

bool failing = false;

} // namespace

FailingRoot::FailingRoot() { failing = true; }
FailingRoot::~FailingRoot() { failing = false; }

/// Takes the place of the library's own: the loader binds a name to the program before its libraries.
int Zentara::Utils::getNativeZTRootDirectory(std::string& root) {
    EnvironmentVariable variable("ZENTARASDK_ROOT");
    root = variable.isDefined() ? variable.getValue() : "";
    return failing ? 1 : 0;
}
