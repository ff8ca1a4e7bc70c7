#include "utils/platform/device_notification.h"

namespace Zentara::Utils::Platform {

void* registerDeviceNotification(void*, void*, unsigned long) noexcept { return nullptr; }

} // namespace Zentara::Utils::Platform
