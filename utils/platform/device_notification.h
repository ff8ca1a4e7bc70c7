#pragma once

namespace Zentara::Utils::Platform {

/// Registers a window or service handle for device events. Null on failure, and on a system without the
/// service.
void* registerDeviceNotification(void* recipient, void* filter, unsigned long flags) noexcept;

} // namespace Zentara::Utils::Platform
