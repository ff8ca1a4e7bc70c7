#pragma once

#include <cstdint>
#include <vector>

#include <zentara/utils/mutex.h>
#include <zentara/utils/signal.h>
#include <zentara/utils/thread_annotations.h>

#include "plugins/simulated/settings.h"

namespace Zentara::IO {
class deviceRequest;
}

namespace Zentara::Simulated {

/// Lets the operations of one device go wrong as its settings say. Safe.
class Faults final {
public:
    Faults(const Settings& settings, Device device);

    /// Called where an operation begins. Returns when the operation is to go on, after a hang if one is due.
    /// \param request what the operation was given, null if it has none. While it hangs it is marked as pending.
    /// \throws what the settings say; Plugin::IOPluginException "OPERATION: cancelled" when a hang was cancelled.
    void meet(Operation operation, IO::deviceRequest* request = nullptr);

    /// Ends a hang. False when nothing hangs.
    bool cancel();

    /// Other settings from now on, all counts at their beginning.
    void rearm(const Settings& settings);

    [[nodiscard]] bool refusesCancel();

private:
    struct Armed {
        Fault fault;
        std::uint64_t calls = 0;
    };

    bool due(Operation operation, Fault& fault);
    void hang(const Fault& fault, IO::deviceRequest* request);
    bool waitHanging(std::uint32_t milliseconds);

    const Device kind;
    Utils::Threading::Mutex lock;
    bool refuseCancel ZENTARA_GUARDED_BY(lock) = false;
    std::vector<Armed> armed ZENTARA_GUARDED_BY(lock);
    std::uint32_t hanging ZENTARA_GUARDED_BY(lock) = 0;
    std::uint32_t cancels ZENTARA_GUARDED_BY(lock) = 0;
    Utils::Threading::Signal wake;
};

} // namespace Zentara::Simulated
