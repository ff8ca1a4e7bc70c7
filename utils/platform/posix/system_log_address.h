#pragma once

namespace Zentara::Utils::Platform {

/// The path of the socket where the system's log service listens. Tests of the library's objects put that of their own
/// service there; nothing else changes it.
[[nodiscard]] const char*& systemLogAddress() noexcept;

} // namespace Zentara::Utils::Platform
