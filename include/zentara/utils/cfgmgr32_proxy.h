#pragma once

#include <zentara/export.h>

namespace Zentara::Utils {

namespace Threading {
class Mutex;
}

/// Registers for device notifications, one caller at a time. Safe.
class ZENTARA_API CFGMGR32Proxy {
public:
    CFGMGR32Proxy() = delete;

    /// The system function of the same name: the registration's handle, or null on failure. Off Windows
    /// there is no such service, and the result is always null.
    static void* RegisterDeviceNotificationW(void* recipient, void* filter, unsigned long flags);

private:
    static Threading::Mutex& m_lock;
};

} // namespace Zentara::Utils
