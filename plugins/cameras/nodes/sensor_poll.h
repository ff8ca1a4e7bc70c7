#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include <zentara/acceleration_internal.h>
#include <zentara/core/periodic_operation.h>
#include <zentara/io/camera_chip.h>
#include <zentara/sensor_value_array.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/smart_ptr.h>
#include <zentara/utils/thread_annotations.h>

namespace Zentara::Cameras {

/// Both temperatures, sensor 0 and 1. \throws what the chip throws
[[nodiscard]] SensorValueArray readTemperatureSensors(IO::CameraChip& chip);
/// One of them. A register that shows no temperature that is known has sensor -1.
[[nodiscard]] SensorValueArray readTemperatureSensor(IO::CameraChip& chip, std::uint32_t address);
/// The acceleration in the register and the two after it.
[[nodiscard]] AccelerationInternal readAccelerationSensor(IO::CameraChip& chip, std::uint32_t address);

/// Makes the periodic readings of a depth node. Safe.
class SensorPoll {
public:
    using Operations = std::vector<Utils::SmartPtr<Core::PeriodicOperation>>;

    /// Replaces the readings to be made; null ones are left out. What was read is forgotten, and so is what another
    /// thread is reading.
    void configure(Operations newOperations);

    /// Makes the readings that are due at a frame's time. One that fails is tried again when it is due the next time.
    void poll(IO::CameraChip& chip, std::int64_t frameMicros);

    /// The last temperatures, by sensor; none if none was read.
    [[nodiscard]] SensorValueArray temperatures();
    /// The last reading of that operation. False, with the result unchanged, if none was made.
    [[nodiscard]] bool acceleration(const Core::PeriodicOperation& operation, AccelerationInternal& result);

private:
    void read(IO::CameraChip& chip, Core::PeriodicOperation& operation);
    [[nodiscard]] bool isConfigured(const Core::PeriodicOperation& operation) const ZENTARA_REQUIRES(lock);
    void store(const SensorValue& reading) ZENTARA_REQUIRES(lock);

    Utils::Threading::Mutex lock; ///< not held while the camera is asked
    Operations operations ZENTARA_GUARDED_BY(lock);
    /// One a sensor, in the order of their first reading.
    SensorValueArray lastTemperatures ZENTARA_GUARDED_BY(lock);
    /// By operation; all of them are configured.
    std::map<const Core::PeriodicOperation*, AccelerationInternal> lastAccelerations ZENTARA_GUARDED_BY(lock);
};

} // namespace Zentara::Cameras
