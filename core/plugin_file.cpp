#include "core/plugin_file.h"

#include <zentara/utils/dynamic_library.h>
#include <zentara/utils/exceptions.h>

#include "utils/platform/library_file.h"

namespace Zentara::Core {

namespace {

/// Passed with every load of a plug-in; it has no effect.
constexpr int loadMode = 2;

} // namespace

void* openPluginFile(const std::string& path, std::string& problem) {
    if (Utils::Platform::isDamagedLibrary(path, problem))
        return nullptr;
    void* library = Utils::loadSharedLibrary(path, loadMode);
    if (!library)
        problem = Utils::getLastError();
    return library;
}

} // namespace Zentara::Core
