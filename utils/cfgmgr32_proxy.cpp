#include <zentara/utils/cfgmgr32_proxy.h>

#include <zentara/utils/mutex.h>

#include "utils/immortal.h"
#include "utils/platform/device_notification.h"

namespace Zentara::Utils {

namespace {

/// Never destroyed, as all class-wide mutexes: threads may still run while the process ends.
constinit Immortal<Threading::Mutex> lockStorage;

} // namespace

Threading::Mutex& CFGMGR32Proxy::m_lock = lockStorage.object;

void* CFGMGR32Proxy::RegisterDeviceNotificationW(void* recipient, void* filter, unsigned long flags) {
    const Threading::AutoLock lock(m_lock);
    return Platform::registerDeviceNotification(recipient, filter, flags);
}

} // namespace Zentara::Utils
