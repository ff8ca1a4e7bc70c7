#include <zentara/utils/cfgmgr32_proxy.h>

#include <zentara/utils/mutex.h>

#include "utils/platform/device_notification.h"

namespace Zentara::Utils {

namespace {

/// Never destroyed, for a thread may still register while the process ends.
Threading::Mutex& registrationLock() {
    static Threading::Mutex& mutex = *new Threading::Mutex;
    return mutex;
}

} // namespace

void* CFGMGR32Proxy::RegisterDeviceNotificationW(void* recipient, void* filter, unsigned long flags) {
    const Threading::AutoLock lock(registrationLock());
    return Platform::registerDeviceNotification(recipient, filter, flags);
}

} // namespace Zentara::Utils
