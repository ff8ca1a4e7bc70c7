#include "plugins/simulated/port_controller.h"

#include <utility>

#include <zentara/utils/clock.h>

#include "plugins/descriptions/wire.h"
#include "plugins/simulated/sensors.h"

namespace Zentara::Simulated {

using namespace Cameras;

namespace {

constexpr std::int64_t quietMicros = 2000;

class PortController final : public Controller {
public:
    explicit PortController(std::unique_ptr<ControllerPort> target) : port(std::move(target)) {}

    void setup(const GUID& unit) override { port->select(unit); }
    void set(std::uint32_t unit, std::int32_t control, const std::uint8_t* data,
             std::uint32_t length) override {
        port->set(unit, static_cast<std::uint32_t>(control), data, length);
    }
    void get(std::uint32_t unit, std::int32_t control, std::uint8_t* data, std::uint32_t length,
             bool) override {
        refreshSensors();
        port->get(unit, static_cast<std::uint32_t>(control), data, length);
    }
    std::int32_t length(std::uint32_t unit, std::uint32_t control) override {
        return port->length(unit, control);
    }
    std::uint16_t tofRegister(std::uint8_t address) const override { return port->tofRegister(address); }
    bool cancel() override { return port->cancel(); }

private:
    /// The readings stand still during a burst of transfers: a register may be read in two of them.
    void refreshSensors() {
        const std::int64_t now = Utils::Clock::nowMicros();
        const bool quiet = now - lastGet > quietMicros;
        lastGet = now;
        if (!quiet)
            return;
        const SensorReadings readings = sensorsAfter(static_cast<double>(now - powerOn) / 1e6);
        port->setTofRegister(sensorTemperatureRegister, readings.sensorTemperature);
        port->setTofRegister(illuminationTemperatureRegister, readings.illuminationTemperature);
        std::uint8_t address = accelerationRegister;
        for (const std::int16_t axis : readings.acceleration)
            port->setTofRegister(address++, static_cast<std::uint16_t>(axis));
    }

    const std::unique_ptr<ControllerPort> port;
    const std::int64_t powerOn = Utils::Clock::nowMicros();
    std::int64_t lastGet = 0;
};

} // namespace

std::unique_ptr<Controller> makeController(const ControllerSettings& settings) {
    std::unique_ptr<ControllerPort> port = makeControllerPort(settings);
    return port ? std::make_unique<PortController>(std::move(port)) : nullptr;
}

} // namespace Zentara::Simulated
