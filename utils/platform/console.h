#pragma once

namespace Zentara::Utils::Platform {

/// Whether a key is waiting on the process's console. Never blocks and takes no key; false without a console,
/// and for a process in the background.
bool keyWaiting() noexcept;

} // namespace Zentara::Utils::Platform
