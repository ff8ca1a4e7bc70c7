#include "plugins/simulated/port_controller.h"

#include <utility>

namespace Zentara::Simulated {

namespace {

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
        port->get(unit, static_cast<std::uint32_t>(control), data, length);
    }
    std::int32_t length(std::uint32_t unit, std::uint32_t control) override {
        return port->length(unit, control);
    }
    bool cancel() override { return port->cancel(); }

private:
    const std::unique_ptr<ControllerPort> port;
};

} // namespace

std::unique_ptr<Controller> makeController(const ControllerSettings& settings) {
    std::unique_ptr<ControllerPort> port = makeControllerPort(settings);
    return port ? std::make_unique<PortController>(std::move(port)) : nullptr;
}

} // namespace Zentara::Simulated
