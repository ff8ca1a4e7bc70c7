#pragma once

#include <string>

namespace Zentara::Utils::Platform {

/// The UTF-16 name of a kernel object; invalid bytes become U+FFFD.
[[nodiscard]] std::wstring objectName(const std::string& name);

} // namespace Zentara::Utils::Platform
