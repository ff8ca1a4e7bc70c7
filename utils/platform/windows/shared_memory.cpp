#include "utils/platform/shared_memory.h"

#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/system.h"

#include <memory>
#include <string_view>

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
        // An object that exists keeps its own size, in whole pages: the view of more than these is refused.
        view = MapViewOfFile(handle, writable ? FILE_MAP_ALL_ACCESS : FILE_MAP_READ, 0, 0, size);
        return view != nullptr;
    }

    void* view = nullptr;

private:
    HANDLE handle = nullptr;
};

/// The part of a name behind the prefix that puts it into the namespace of all sessions or of this one.
std::string_view withoutNamespace(std::string_view name) {
    for (const std::string_view prefix : {"Global\\", "Local\\"}) {
        if (name.starts_with(prefix))
            return name.substr(prefix.size());
    }
    return name;
}

bool isUsable(const std::string& fullName, std::size_t size) {
    const std::string_view name = withoutNamespace(fullName);
    const bool named =
        name.size() > 1 && name.find_first_of("/\\", 1) == std::string_view::npos && name[0] != '\\';
    return named && size > 0;
}

} // namespace

SharedMapping* SharedMapping::create(const std::string& name, std::size_t size, bool writable) {
    if (!isUsable(name, size))
        return nullptr;
    auto mapping = std::make_unique<WindowsMapping>();
    return mapping->open(utf8ToWideOrWidened(name), size, writable) ? mapping.release() : nullptr;
}

void SharedMapping::destroy(SharedMapping* mapping) noexcept { delete static_cast<WindowsMapping*>(mapping); }

void* SharedMapping::address() const noexcept { return static_cast<const WindowsMapping*>(this)->view; }

bool SharedMapping::namesRemain() noexcept { return false; }

void SharedMapping::leave() noexcept {}

void SharedMapping::sweep(const std::string&) noexcept {}

void SharedMapping::unlink() noexcept {}

} // namespace Zentara::Utils::Platform
