#pragma once

namespace Zentara::IO {

/// Writes a warning to the log, if there is one. Safe.
void warn(const char* text) noexcept;

} // namespace Zentara::IO
