#include "utils/platform/windows/object_name.h"

#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

std::wstring objectName(const std::string& name) {
    const int size = static_cast<int>(name.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, name.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, name.data(), size, wide.data(), length);
    return wide;
}

} // namespace Zentara::Utils::Platform
