#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <zentara/utils/mutex.h>
#include <zentara/utils/signal.h>

#include "plugins/simulated/controllers/controller_model.h"
#include "plugins/simulated/controllers/transfer.h"

namespace Zentara::Simulated {

/// What goes wrong with one transfer.
enum class TransferFaultKind {
    Fail,    ///< it never reaches the controller; `IOPluginException`
    Late,    ///< the controller has acted, but its answer comes too late; `TimeoutPluginException`
    Short,   ///< fewer bytes come back, or are taken, than were asked
    Long,    ///< more bytes come back than were asked
    Corrupt, ///< every byte but the first has its bits turned over
    Hang ///< it never reaches the controller and waits until it is cancelled, or for `TransferFault::hangMillis`
};

struct TransferFault {
    std::uint64_t transfer = 0; ///< which SET or GET, counted from 1 since the last `clearFaults`
    TransferFaultKind kind = TransferFaultKind::Fail;
    unsigned long hangMillis = 10000;
};

/// A fault from words: which transfer, one of fail, late, short, long, corrupt, hang, and for how many
/// milliseconds it hangs (empty for as long as usual). \throws ArgumentPluginException naming the word that
/// is wrong.
[[nodiscard]] TransferFault parseTransferFault(const std::string& transfer, const std::string& kind,
                                               const std::string& hangMillis);

/// The extension-unit end of a simulated camera: checks unit, control and length as a camera's USB stack
/// does, lets the planned faults happen, keeps a log, and passes the rest to the controller. *Safe*.
///
/// A reply of another length than was asked is an `IOPluginException` with both numbers, and the caller's
/// buffer stays as it was; it changes after a whole success only.
class ControllerPort {
public:
    explicit ControllerPort(std::unique_ptr<ControllerModel> model);
    ~ControllerPort();

    /// \throws NotSupportedPluginException when the camera has no such unit.
    void select(const ::GUID& guid);
    void set(std::uint32_t unit, std::uint32_t control, const void* data, std::size_t length);
    void get(std::uint32_t unit, std::uint32_t control, void* data, std::size_t length);
    /// Bytes of the control. \throws IOPluginException for one that is not there.
    [[nodiscard]] int length(std::uint32_t unit, std::uint32_t control);
    /// Ends a transfer that hangs. False when none did.
    bool cancel();

    void addFault(const TransferFault& fault);
    /// Forgets the faults that have not happened and counts transfers from 1 again.
    void clearFaults();

    /// The transfers since the last `clearLog`, oldest first; of more than 100,000 the last ones.
    [[nodiscard]] std::vector<Transfer> log() const;
    void clearLog();
    /// Is told of each transfer when it is over, under the port's lock. Set before the first one.
    void setObserver(std::function<void(const Transfer&)> observer);

    /// A register of the time-of-flight controller as the camera itself sees it, without a transfer; 0, and nothing
    /// happens, on a camera without one.
    [[nodiscard]] std::uint16_t tofRegister(std::uint8_t address) const;
    void setTofRegister(std::uint8_t address, std::uint16_t value);

    /// The controller itself; touch it only while no transfer runs.
    [[nodiscard]] ControllerModel& model() noexcept { return *controller; }

private:
    const TransferFault* dueFault() ZENTARA_REQUIRES(mutex);
    void checkControl(std::uint32_t unit, std::uint32_t control, std::size_t length) ZENTARA_REQUIRES(mutex);
    void perform(Transfer& transfer) ZENTARA_REQUIRES(mutex);
    void record(Transfer transfer) ZENTARA_REQUIRES(mutex);
    void run(Transfer& transfer);
    void runFaulty(Transfer& transfer, const TransferFault& fault);
    void hang(unsigned long milliseconds);

    const std::unique_ptr<ControllerModel> controller;
    Utils::Threading::Signal cancelled;
    mutable Utils::Threading::Mutex mutex;
    bool selected ZENTARA_GUARDED_BY(mutex) = false;
    bool hanging ZENTARA_GUARDED_BY(mutex) = false;
    std::uint64_t count ZENTARA_GUARDED_BY(mutex) = 0;
    std::vector<TransferFault> faults ZENTARA_GUARDED_BY(mutex);
    std::vector<Transfer> transfers ZENTARA_GUARDED_BY(mutex);
    std::function<void(const Transfer&)> observe ZENTARA_GUARDED_BY(mutex);
};

} // namespace Zentara::Simulated
