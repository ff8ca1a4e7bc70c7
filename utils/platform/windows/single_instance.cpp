#include "utils/platform/single_instance.h"

#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/system.h"

#include <memory>

namespace Zentara::Utils::Platform {

namespace {

struct WindowsInstance final : SingleInstance {
    ~WindowsInstance() {
        if (handle)
            CloseHandle(handle);
    }

    HANDLE handle = nullptr;
};

} // namespace

SingleInstance* SingleInstance::create(const char* name, bool& existed) {
    existed = false;
    const std::wstring wideName = utf8ToWideOrWidened(name);
    auto instance = std::make_unique<WindowsInstance>();
    if (!wideName.empty())
        instance->handle = CreateMutexW(nullptr, FALSE, wideName.c_str());
    if (!instance->handle)
        return nullptr;
    existed = GetLastError() == ERROR_ALREADY_EXISTS;
    return instance.release();
}

void SingleInstance::destroy(SingleInstance* instance) noexcept {
    delete static_cast<WindowsInstance*>(instance);
}

} // namespace Zentara::Utils::Platform
