#include "utils/platform/library_pin.h"

#include <windows.h>

namespace Zentara::Utils::Platform {

bool pinThisLibrary() noexcept {
    HMODULE self = nullptr;
    return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                              reinterpret_cast<LPCWSTR>(&pinThisLibrary), &self) != 0;
}

} // namespace Zentara::Utils::Platform
