#pragma once

namespace Zentara::Utils::Platform {

/// The path of the socket where the system's log service listens. Tests put that of their own service there;
/// nothing else changes it. Exported for that.
[[nodiscard, gnu::visibility("default")]] const char*& systemLogAddress() noexcept;

} // namespace Zentara::Utils::Platform
