#include "plugins/cameras/nodes/node_chip.h"

#include <zentara/io/ov0570_impl.h>
#include <zentara/io/vc0258_impl.h>
#include <zentara/io/vc0345_impl.h>
#include <zentara/io/video_device_proxy.h>

namespace Zentara::Cameras {
namespace {

template<typename Chip>
class BoundChip final : public NodeChip {
public:
    explicit BoundChip(IO::VideoDeviceProxy& proxy) { chip.initialize(&proxy); }
    ~BoundChip() override { chip.dispose(); }

    void send(const Core::RequestList* requests) override { chip.processCommands(requests); }
    void send(const Utils::SmartPtr<IO::xuRequest>& request) override { chip.processCommand(request); }
    [[nodiscard]] std::uint16_t readRegister(std::uint32_t address) override {
        return static_cast<std::uint16_t>(chip.getTOFControllerRegisterLocked(address));
    }
    [[nodiscard]] std::vector<std::uint8_t> readMemory(std::uint32_t address, std::uint32_t length) override {
        return chip.getUSBBackendConfigurationLocked(address, length);
    }
    [[nodiscard]] std::uint32_t bridgeVersion() override { return chip.getUSBBackendFirmwareVersionLocked(); }
    [[nodiscard]] std::uint16_t tofVersion() override {
        return static_cast<std::uint16_t>(chip.getTOFControllerFirmwareVersionLocked());
    }

private:
    Chip chip;
};

} // namespace

std::unique_ptr<NodeChip> NodeChip::create(ChipKind kind, IO::VideoDeviceProxy& proxy) {
    switch (kind) {
    case ChipKind::OV0570:
        return std::make_unique<BoundChip<IO::OV0570Impl>>(proxy);
    case ChipKind::VC0258:
        return std::make_unique<BoundChip<IO::VC0258Impl>>(proxy);
    default:
        return std::make_unique<BoundChip<IO::VC0345Impl>>(proxy);
    }
}

} // namespace Zentara::Cameras
