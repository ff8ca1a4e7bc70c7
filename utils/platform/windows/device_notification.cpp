#include "utils/platform/device_notification.h"

#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

void* registerDeviceNotification(void* recipient, void* filter, unsigned long flags) noexcept {
    return RegisterDeviceNotificationW(recipient, filter, flags);
}

} // namespace Zentara::Utils::Platform
