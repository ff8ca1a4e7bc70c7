#include <zentara/core/periodic_operation.h>

#include <zentara/utils/clock.h>
#include <zentara/utils/mutex.h>

namespace Zentara::Core {

struct PeriodicOperation::Impl {
    Impl(PeriodicOperationType kind, std::int64_t microseconds, bool isEnabled, std::uint32_t sync)
        : type(kind), interval(microseconds), syncToFrame(sync), enabled(isEnabled) {}

    const PeriodicOperationType type;
    const std::int64_t interval;
    const std::uint32_t syncToFrame;
    bool enabled;
    std::int64_t lastPoll = 0;
    bool pending = false;
    Utils::Threading::Mutex mutex; // taken by users only, through lock and unlock; guards what changes
};

PeriodicOperation::PeriodicOperation(PeriodicOperationType type, std::int64_t interval, bool enabled,
                                     std::uint32_t syncToFrame)
    : impl(std::make_unique<Impl>(type, interval, enabled, syncToFrame)) {}

PeriodicOperation::~PeriodicOperation() = default;

PeriodicOperationType PeriodicOperation::getType() const { return impl->type; }

void PeriodicOperation::enable(bool newEnabled) { impl->enabled = newEnabled; }

bool PeriodicOperation::syncToFrame() const { return impl->syncToFrame & 1; }

bool PeriodicOperation::timeToPoll() { return timeToPoll(impl->enabled ? Utils::Clock::nowMicros() : 0); }

bool PeriodicOperation::timeToPoll(std::int64_t now) {
    // Unsigned, since times that lie half an age apart would overflow.
    const std::uint64_t passed = static_cast<std::uint64_t>(now) - static_cast<std::uint64_t>(impl->lastPoll);
    if (!impl->enabled || static_cast<std::int64_t>(passed) <= impl->interval)
        return false;
    impl->lastPoll = now;
    if (impl->pending)
        return false;
    impl->pending = true;
    return true;
}

void PeriodicOperation::setDone() { impl->pending = false; }

void PeriodicOperation::lock() ZENTARA_NO_THREAD_SAFETY_ANALYSIS { impl->mutex.acquire(); }

void PeriodicOperation::unlock() ZENTARA_NO_THREAD_SAFETY_ANALYSIS { impl->mutex.release(); }

TemperaturePeriodicOperation::TemperaturePeriodicOperation(std::uint32_t address, std::int64_t interval,
                                                           bool enabled)
    : PeriodicOperation(PeriodicOperationType_TEMPERATURE, interval, enabled, 1), registerAddress(address) {}

TemperaturePeriodicOperation::~TemperaturePeriodicOperation() = default;

std::uint32_t TemperaturePeriodicOperation::getRegAddress() const { return registerAddress; }

AccelerometerPeriodicOperation::AccelerometerPeriodicOperation(std::uint32_t address, std::int64_t interval,
                                                               bool enabled)
    : PeriodicOperation(PeriodicOperationType_ACCELEROMETER, interval, enabled, 1), registerAddress(address) {
}

AccelerometerPeriodicOperation::~AccelerometerPeriodicOperation() = default;

std::uint32_t AccelerometerPeriodicOperation::getRegAddress() const { return registerAddress; }

} // namespace Zentara::Core
