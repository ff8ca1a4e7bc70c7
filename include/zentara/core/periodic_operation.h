#pragma once

#include <cstdint>
#include <memory>

#include <zentara/export.h>
#include <zentara/utils/refcounted.h>

namespace Zentara::Core {

/// What a periodic operation reads.
enum PeriodicOperationType : std::int32_t {
    PeriodicOperationType_ACCELEROMETER = 0,
    PeriodicOperationType_TEMPERATURE = 1,
};

/// A sensor reading that a depth node makes at a fixed interval, at most one at a time. The host makes it and hands it
/// to the node; both hold it. Shared as `Utils::SmartPtr<PeriodicOperation>`.
///
///              timeToPoll() is true: the interval has passed
///     Idle ---------------------------------------------------> Pending
///       ^                                                         |
///       +----------- setDone(): the reading was made -------------+
///
/// Pending, and while disabled, timeToPoll() is false.
///
/// Separate. A node that polls on one thread and completes on another calls `enable`, `timeToPoll` and
/// `setDone` between `lock` and `unlock`; nothing takes that mutex by itself.
class ZENTARA_API PeriodicOperation : public Utils::Refcounted {
public:
    /// \param interval microseconds; more than these must have passed since the last reading
    /// \param syncToFrame only bit 0 counts
    PeriodicOperation(PeriodicOperationType type, std::int64_t interval, bool enabled,
                      std::uint32_t syncToFrame);
    PeriodicOperation(const PeriodicOperation&) = delete;
    PeriodicOperation& operator=(const PeriodicOperation&) = delete;

    [[nodiscard]] PeriodicOperationType getType() const;

    /// A pending reading stays pending.
    void enable(bool newEnabled);

    /// Whether the reading is to be made between two frames.
    [[nodiscard]] bool syncToFrame() const;

    /// Whether a reading is due now; it is pending then. More than the interval must have passed since the
    /// last time that this was so. That time moves on even while a reading is pending, so a slow reader
    /// skips intervals and never catches up. Never true while disabled.
    [[nodiscard]] bool timeToPoll();

    /// The same at a time given in microseconds, for nodes that poll by the time of their frames.
    [[nodiscard]] bool timeToPoll(std::int64_t now);

    /// The pending reading was made.
    void setDone();

    /// Waits for the operation's mutex and takes it; gives it back.
    void lock();
    void unlock();

protected:
    ~PeriodicOperation() override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

/// Reads the temperature sensors, between two frames.
class ZENTARA_API TemperaturePeriodicOperation : public PeriodicOperation {
public:
    /// \param interval microseconds
    TemperaturePeriodicOperation(std::uint32_t registerAddress, std::int64_t interval, bool enabled);

    /// Where the camera shows the readings: a register of its time-of-flight controller.
    [[nodiscard]] std::uint32_t getRegAddress() const;

protected:
    ~TemperaturePeriodicOperation() override;

private:
    std::uint32_t registerAddress; ///< as the host gave it
};

/// Reads the accelerometer, between two frames.
class ZENTARA_API AccelerometerPeriodicOperation : public PeriodicOperation {
public:
    /// \param interval microseconds
    AccelerometerPeriodicOperation(std::uint32_t registerAddress, std::int64_t interval, bool enabled);

    /// Where the camera shows the reading: its first register in the time-of-flight controller.
    [[nodiscard]] std::uint32_t getRegAddress() const;

protected:
    ~AccelerometerPeriodicOperation() override;

private:
    std::uint32_t registerAddress; ///< as the host gave it
};

} // namespace Zentara::Core
