#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <zentara/io/camera_chip.h>
#include <zentara/utils/mutex.h>

#include "plugins/simulated/faults.h"
#include "plugins/simulated/firmware/firmware.h"

namespace Zentara::Simulated {

using Transfer = IO::ChipTransfer;

/// The USB end of a simulated camera: checks unit, control and length as a camera's USB stack does, lets the faults of
/// its transfers happen, keeps a log, and passes the rest to the firmware. *Safe*.
///
/// A reply of another length than was asked is an `IOPluginException` with both numbers, and the caller's
/// buffer stays as it was; it changes after a whole success only.
class Port {
public:
    /// \param faults those of the device that it belongs to; its own when null
    explicit Port(std::unique_ptr<Firmware> firmware, std::shared_ptr<Faults> faults = nullptr);
    ~Port();

    /// \throws NotSupportedPluginException when the camera has no such unit.
    void select(const ::GUID& guid);
    void set(std::uint32_t unit, std::uint32_t control, const void* data, std::size_t length);
    void get(std::uint32_t unit, std::uint32_t control, void* data, std::size_t length);
    /// Bytes of the control. \throws IOPluginException for one that is not there.
    [[nodiscard]] int length(std::uint32_t unit, std::uint32_t control);

    /// What the camera tells of its units and controls beside their values, as `IO::ExtensionUnitQuery` asks for it;
    /// nothing for a value. \throws Plugin::IOPluginException for a control that isn't there
    [[nodiscard]] std::optional<Bytes> describe(std::uint32_t unit, std::uint32_t control) const;
    /// Ends a transfer that hangs. False when none did.
    bool cancel() { return faults->cancel(); }

    /// The Nth transfer goes wrong, counted from 1 since the last `clearFaults`.
    void addFault(std::uint32_t transfer, Fault::Kind kind, std::uint32_t hangMillis = 0);
    /// Forgets the faults that have not happened and counts transfers from 1 again.
    void clearFaults() { faults->clear(); }

    /// The transfers since the last `clearLog`, oldest first; of more than 100,000 the last ones.
    [[nodiscard]] std::vector<Transfer> log() const;
    void clearLog();
    /// Is told of each transfer when it is over, under the port's lock. Set before the first one.
    void setObserver(std::function<void(const Transfer&)> observer);
    /// From now on the sensors' registers move as time goes by, and stand still during a burst of transfers: a register
    /// may be read in two of them.
    void switchSensorsOn();

    /// A register of the time-of-flight controller as the camera itself sees it, without a transfer; 0 on a camera
    /// without one.
    [[nodiscard]] std::uint16_t tofRegister(std::uint8_t address) const;

    /// The firmware itself; touch it only while no transfer runs.
    [[nodiscard]] Firmware& model() noexcept { return *firmware; }

private:
    [[nodiscard]] std::size_t checkControl(std::uint32_t unit, std::uint32_t control) const
        ZENTARA_REQUIRES(mutex);
    void refreshSensors() ZENTARA_REQUIRES(mutex);
    void perform(Transfer& transfer) ZENTARA_REQUIRES(mutex);
    void record(Transfer transfer) ZENTARA_REQUIRES(mutex);
    void run(Transfer& transfer);
    void runFaulty(Transfer& transfer, const Fault& fault);

    const std::unique_ptr<Firmware> firmware;
    const std::shared_ptr<Faults> faults;
    mutable Utils::Threading::Mutex
        mutex; ///< given up while a transfer hangs, so that the hang can be cancelled
    bool selected ZENTARA_GUARDED_BY(mutex) = false;
    std::int64_t powerOn ZENTARA_GUARDED_BY(mutex) = 0;        ///< of the sensors; 0 while they are off
    std::int64_t lastGet ZENTARA_GUARDED_BY(mutex) = 0;        ///< microseconds of the monotonic clock
    std::vector<Transfer> transfers ZENTARA_GUARDED_BY(mutex); ///< the log, oldest first
    std::function<void(const Transfer&)> observe ZENTARA_GUARDED_BY(mutex); ///< empty for nobody
};

/// The port of a camera that is set so, with its sensors on; null for one without a controller.
/// \throws Plugin::ConfigurationPluginException when the settings name a file that cannot be read or written.
[[nodiscard]] std::unique_ptr<Port> makePort(const Settings& settings, std::shared_ptr<Faults> faults);

} // namespace Zentara::Simulated
