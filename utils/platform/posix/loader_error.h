#pragma once

namespace Zentara::Utils::Platform {

/// Keeps a text of the dynamic loader as the calling thread's last error, until a later failure replaces it.
void keepLoaderError(const char* text) noexcept;

} // namespace Zentara::Utils::Platform
