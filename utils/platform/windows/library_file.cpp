#include "utils/platform/library_file.h"

#include "utils/platform/files.h"
#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

const char* libraryExtension() noexcept { return "dll"; }

bool isLibraryLoaded(const std::string& path) {
    return GetModuleHandleW(utf8ToWideOrWidened(nativeSeparators(path)).c_str()) != nullptr;
}

/// The system's loader compares each section with the file before it maps it.
bool isDamagedLibrary(const std::string&, std::string&) { return false; }

} // namespace Zentara::Utils::Platform
