#include "utils/platform/shared_memory.h"

#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/system.h"

#include <new>

namespace Zentara::Utils::Platform {

namespace {

class WindowsMapping final : public SharedMapping {
public:
    ~WindowsMapping() {
        if (view)
            UnmapViewOfFile(view);
        if (handle)
            CloseHandle(handle);
    }

    bool open(const std::wstring& name, std::size_t size, bool writable) {
        handle = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, writable ? PAGE_READWRITE : PAGE_READONLY,
                                    static_cast<DWORD>(size >> 32), static_cast<DWORD>(size), name.c_str());
        if (!handle)
            return false;
        // Asking for the size makes an existing, smaller object fail.
        view = MapViewOfFile(handle, writable ? FILE_MAP_ALL_ACCESS : FILE_MAP_READ, 0, 0, size);
        return view != nullptr;
    }

    void* view = nullptr;

private:
    HANDLE handle = nullptr;
};

bool isUsable(const std::string& name, std::size_t size) {
    const bool named =
        name.size() > 1 && name.find_first_of("/\\", 1) == std::string::npos && name[0] != '\\';
    return named && size > 0;
}

} // namespace

SharedMapping* SharedMapping::create(const std::string& name, std::size_t size, bool writable) noexcept {
    if (!isUsable(name, size))
        return nullptr;
    std::unique_ptr<WindowsMapping> mapping(new (std::nothrow) WindowsMapping());
    return mapping && mapping->open(utf8ToWideOrWidened(name), size, writable) ? mapping.release() : nullptr;
}

void SharedMapping::destroy(SharedMapping* mapping) noexcept { delete static_cast<WindowsMapping*>(mapping); }

void* SharedMapping::address() const noexcept { return static_cast<const WindowsMapping*>(this)->view; }

void SharedMapping::unlink() noexcept {}

} // namespace Zentara::Utils::Platform
