#include "utils/platform/dynamic_library.h"

#include "utils/platform/files.h"
#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

namespace {

/// Keeps the loader from asking the user about missing files while it lives.
class NoDialogs {
public:
    NoDialogs() noexcept : saved(GetErrorMode()) { SetErrorMode(saved | SEM_FAILCRITICALERRORS); }
    ~NoDialogs() {
        const DWORD error = GetLastError();
        SetErrorMode(saved);
        SetLastError(error);
    }
    NoDialogs(const NoDialogs&) = delete;
    NoDialogs& operator=(const NoDialogs&) = delete;

private:
    UINT saved;
};

} // namespace

void* openLibrary(const std::string& path, bool) {
    if (path.empty() || path.find('\0') != std::string::npos) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    // The loader takes a '/' for a part of the name.
    const std::wstring native = utf8ToWideOrWidened(nativeSeparators(path));
    const NoDialogs noDialogs;
    try {
        return reinterpret_cast<void*>(LoadLibraryW(native.c_str()));
    } catch (...) {
        // From a static initialiser, where the loader lets it through.
        SetLastError(ERROR_DLL_INIT_FAILED);
        return nullptr;
    }
}

void* findSymbol(void* library, const char* name) {
    // To the system a null handle means the program itself.
    if (!library) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

bool closeLibrary(void* library) noexcept {
    if (!library) {
        SetLastError(ERROR_INVALID_HANDLE);
        return false;
    }
    return FreeLibrary(static_cast<HMODULE>(library)) != 0;
}

} // namespace Zentara::Utils::Platform
