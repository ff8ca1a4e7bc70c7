#include "utils/platform/single_instance.h"

#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/system.h"

#include <new>

namespace Zentara::Utils::Platform {

namespace {

struct WindowsInstance final : SingleInstance {
    explicit WindowsInstance(HANDLE mutex) : handle(mutex) {}
    ~WindowsInstance() { CloseHandle(handle); }

    const HANDLE handle;
};

} // namespace

SingleInstance* SingleInstance::create(const char* name, bool& existed) noexcept {
    existed = false;
    const HANDLE handle = *name ? CreateMutexW(nullptr, FALSE, utf8ToWideOrWidened(name).c_str()) : nullptr;
    if (!handle)
        return nullptr;
    existed = GetLastError() == ERROR_ALREADY_EXISTS;
    auto* instance = new (std::nothrow) WindowsInstance(handle);
    if (!instance)
        CloseHandle(handle);
    return instance;
}

void SingleInstance::destroy(SingleInstance* instance) noexcept {
    delete static_cast<WindowsInstance*>(instance);
}

} // namespace Zentara::Utils::Platform
