#include "plugins/cameras/nodes/sensor_poll.h"

#include <algorithm>
#include <utility>

#include <zentara/plugin/plugin_exceptions.h>

#include "plugins/descriptions/wire.h"

namespace Zentara::Cameras {
namespace {

using Utils::Threading::AutoLock;

constexpr float celsiusPerStep = 1.0F / 16;
constexpr float stepsPerG = 1000; // a division gives the float nearest to what the register says

std::int32_t sensorOf(std::uint32_t address) {
    switch (address) {
    case sensorTemperatureRegister:
        return 0;
    case illuminationTemperatureRegister:
        return 1;
    default:
        return -1;
    }
}

/// Registers of the time-of-flight controller have 16 bits.
std::uint16_t readRegister(IO::CameraChip& chip, std::uint32_t address) {
    return static_cast<std::uint16_t>(chip.read(IO::CameraChip::Target::Tof, address));
}

SensorValue readTemperature(IO::CameraChip& chip, std::uint32_t address) {
    return {sensorOf(address), celsiusPerStep * static_cast<float>(readRegister(chip, address))};
}

/// Marks a reading as made, whatever becomes of it.
class PendingReading {
public:
    explicit PendingReading(Core::PeriodicOperation& made) : operation(made) {}
    ~PendingReading() {
        operation.lock();
        operation.setDone();
        operation.unlock();
    }
    PendingReading(const PendingReading&) = delete;
    PendingReading& operator=(const PendingReading&) = delete;

private:
    Core::PeriodicOperation& operation;
};

bool isDue(Core::PeriodicOperation& operation, std::int64_t micros) {
    operation.lock();
    const bool due = operation.timeToPoll(micros);
    operation.unlock();
    return due;
}

} // namespace

SensorValueArray readTemperatureSensors(IO::CameraChip& chip) {
    return {{readTemperature(chip, sensorTemperatureRegister),
             readTemperature(chip, illuminationTemperatureRegister)}};
}

SensorValueArray readTemperatureSensor(IO::CameraChip& chip, std::uint32_t address) {
    return {{readTemperature(chip, address)}};
}

AccelerationInternal readAccelerationSensor(IO::CameraChip& chip, std::uint32_t address) {
    const auto axis = [&](std::uint32_t index) {
        return static_cast<float>(static_cast<std::int16_t>(readRegister(chip, address + index))) / stepsPerG;
    };
    AccelerationInternal acceleration;
    acceleration.x = axis(0);
    acceleration.y = axis(1);
    acceleration.z = axis(2);
    return acceleration;
}

void SensorPoll::configure(Operations newOperations) {
    std::erase(newOperations, Utils::SmartPtr<Core::PeriodicOperation>());
    const AutoLock hold(lock);
    operations = std::move(newOperations);
    lastTemperatures.values.clear();
    lastAccelerations.clear();
}

void SensorPoll::poll(IO::CameraChip& chip, std::int64_t frameMicros) {
    Operations due;
    {
        const AutoLock hold(lock);
        due = operations; // a copy: others may be configured while the camera is asked
    }
    for (const auto& operation : due) {
        if (!isDue(*operation, frameMicros))
            continue;
        const PendingReading pending(*operation);
        try {
            read(chip, *operation);
        } catch (const Plugin::PluginException&) {
            // Logged where it was made; a sensor that is silent must not end the stream.
        }
    }
}

void SensorPoll::read(IO::CameraChip& chip, Core::PeriodicOperation& operation) {
    if (const auto* temperature = dynamic_cast<const Core::TemperaturePeriodicOperation*>(&operation)) {
        const SensorValueArray readings = readTemperatureSensor(chip, temperature->getRegAddress());
        const AutoLock hold(lock);
        if (isConfigured(operation)) // still
            store(readings.values.front());
    } else if (const auto* accelerometer =
                   dynamic_cast<const Core::AccelerometerPeriodicOperation*>(&operation)) {
        const AccelerationInternal reading = readAccelerationSensor(chip, accelerometer->getRegAddress());
        const AutoLock hold(lock);
        if (isConfigured(operation))
            lastAccelerations[&operation] = reading;
    }
}

bool SensorPoll::isConfigured(const Core::PeriodicOperation& operation) const {
    return std::any_of(operations.begin(), operations.end(),
                       [&operation](const auto& configured) { return configured.get() == &operation; });
}

void SensorPoll::store(const SensorValue& reading) {
    for (SensorValue& known : lastTemperatures.values) {
        if (known.sensorId == reading.sensorId) {
            known = reading;
            return;
        }
    }
    lastTemperatures.values.push_back(reading);
}

SensorValueArray SensorPoll::temperatures() {
    const AutoLock hold(lock);
    return lastTemperatures;
}

bool SensorPoll::acceleration(const Core::PeriodicOperation& operation, AccelerationInternal& result) {
    const AutoLock hold(lock);
    const auto found = lastAccelerations.find(&operation);
    if (found != lastAccelerations.end())
        result = found->second;
    return found != lastAccelerations.end();
}

} // namespace Zentara::Cameras
