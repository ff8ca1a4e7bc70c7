// bare_start [DIRECTORY]: links what the tool links, and opens the plug-ins of a directory as a scan does. What the tool's
// start is compared with.
#include <cstdint>

#include <zentara/core/plugin_exports.h>
#include <zentara/core/plugin_probe.h>
#include <zentara/utils/dynamic_library.h>
#include <zentara/utils/files.h>

int main(int argc, char** argv) {
    using namespace Zentara;
    std::int32_t sum = 0;
    const std::string directory = argc > 1 ? argv[1] : "";
    for (const std::string& path : directory.empty()
                                       ? std::vector<std::string>()
                                       : Utils::getFileList(directory, Core::pluginFileExtension())) {
        void* const library = Utils::loadSharedLibrary(path, 2);
        if (library == nullptr)
            continue;
        if (void* const type = reinterpret_cast<void*>(Utils::getFunction(library, "getImplType")))
            sum += reinterpret_cast<Core::GetImplTypeFunction>(type)();
        for (const char* const name : {"getImplGUID", "getPluginVersion", "getSDKVersion"})
            sum += Utils::getFunction(library, name) != nullptr;
        Utils::freeSharedLibrary(library);
    }
    return sum < 0 ? 1 : 0;
}
