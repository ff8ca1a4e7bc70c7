#include "core/plugin_file.h"

#include <cstdint>

#include <zentara/utils/exceptions.h>
#include <zentara/utils/format.h>

#include "utils/platform/dynamic_library.h"
#include "utils/platform/error_text.h"
#include "utils/platform/library_file.h"

namespace Zentara::Core {

using Utils::Platform::LibraryFileState;

void* openPluginFile(const std::string& path, std::string& problem) {
    // Before the loader sees it: one that was cut short may crash the process as it is mapped.
    const LibraryFileState state = Utils::Platform::examineLibrary(path, problem);
    if (state == LibraryFileState::Damaged)
        return nullptr;
    void* library = Utils::Platform::openLibrary(path, state == LibraryFileState::Whole);
    if (!library) {
        // The number first: the text's own way to the system may change it.
        const std::uint32_t number = Utils::Platform::lastError();
        problem = Utils::getLastError();
        // Some texts of the system are made for the name of a program and do not come without one.
        if (problem.empty())
            problem = Utils::Format("system error %") % number;
    }
    return library;
}

} // namespace Zentara::Core
