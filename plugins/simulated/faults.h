#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include <zentara/utils/mutex.h>
#include <zentara/utils/signal.h>
#include <zentara/utils/thread_annotations.h>

#include "plugins/simulated/settings.h"

namespace Zentara::IO {
class deviceRequest;
}

namespace Zentara::Simulated {

/// Lets the operations of one device, and the transfers below them, go wrong as its settings say. Safe.
class Faults final {
public:
    /// Without faults.
    Faults() = default;
    Faults(const Settings& settings, Device device);

    /// Called where an operation begins. Returns when the operation is to go on, after a hang if one is due.
    /// \param request what the operation was given, null if it has none. While it hangs it is marked as pending.
    /// \throws what the settings say; Plugin::IOPluginException "OPERATION: cancelled" when a hang was cancelled.
    void meet(Operation operation, IO::deviceRequest* request = nullptr);

    /// The fault of this call of the operation, if it has one. Every call counts.
    [[nodiscard]] std::optional<Fault> due(Operation operation);
    /// Throws what a fault of kind Throw or Foreign stands for.
    [[noreturn]] static void raise(const Fault& fault);
    /// Waits for so long. False when a cancel came before the time was over.
    bool hang(std::uint32_t milliseconds);

    /// Ends a hang. False when nothing hangs.
    bool cancel();

    void add(const Fault& fault);
    /// Forgets the faults and counts calls from the first again.
    void clear();
    /// Other settings from now on, all counts at their beginning.
    void rearm(const Settings& settings);

    [[nodiscard]] bool refusesCancel();

private:
    const Device kind = Device::Any;
    Utils::Threading::Mutex lock;
    bool refuseCancel ZENTARA_GUARDED_BY(lock) = false;
    /// Those that have happened as well: counts tell them apart.
    std::vector<Fault> armed ZENTARA_GUARDED_BY(lock);
    std::array<std::uint64_t, operationCount> calls ZENTARA_GUARDED_BY(lock){}; ///< so far, of each operation
    std::uint32_t hanging ZENTARA_GUARDED_BY(lock) = 0;                         ///< threads in hang()
    std::uint32_t cancels ZENTARA_GUARDED_BY(lock) = 0; ///< a hang that began under another number is over
    Utils::Threading::Signal wake;
};

} // namespace Zentara::Simulated
