#include "io/chips/reached_chip.h"

#include <zentara/io/ov0570_impl.h>
#include <zentara/io/vc0258_impl.h>

#include "io/chips/ov0570_protocol.h"
#include "io/chips/vc0258_tunnel.h"

namespace Zentara::IO {

namespace {

constexpr unsigned registerMask = 0xFFFF;
constexpr int mostAttempts = 16;

class VC0258Registers final : public TofRegisters {
public:
    explicit VC0258Registers(const BackEndWay& way) : wire(way) {}

    std::uint16_t read(std::uint8_t address) override {
        unsigned value = 0;
        inPresentOrder(
            [&](unsigned order) { value = tunnel.getI2CData1A2D(VC0258::tofReadAddress, address, order); });
        return static_cast<std::uint16_t>(value);
    }
    void write(std::uint8_t address, std::uint16_t value) override {
        inPresentOrder(
            [&](unsigned order) { tunnel.setI2CData1A2D(VC0258::tofWriteAddress, address, value, order); });
    }
    /// Settings of the bridge that others remember have no part in it.
    std::vector<unsigned char> readConfiguration(unsigned start, unsigned length) override {
        return wire.getUSBBackendConfigurationLocked(start, length);
    }

private:
    /// Makes a transfer of two data bytes in the order in which the bridge stands: whoever else uses it remembers what he
    /// set. If he sets another one meanwhile, on a thread of his own, the bytes arrive exchanged, and the transfer is made
    /// anew.
    template<typename Transfer>
    void inPresentOrder(Transfer transfer) {
        unsigned order = presentOrder();
        for (int attempt = 0; attempt < mostAttempts; ++attempt) {
            bridge.assume(VC0258::lastByteOrder, order);
            transfer(order);
            const unsigned after = presentOrder();
            if (after == order)
                return;
            order = after;
        }
        throw Plugin::IOPluginException("the byte order of the bridge changes with every transfer");
    }

    [[nodiscard]] unsigned presentOrder() { return bridge.read(VC0258::lastByteOrder) & 1; }

    ReachedChip<VC0258Impl> wire;
    VCBridge bridge{wire, {VC::sensorControlSize, VC0258::lastByteOrder}};
    VC0258Tunnel tunnel{wire, bridge};
};

} // namespace

TofRegisters::~TofRegisters() = default;

std::unique_ptr<TofRegisters> reachOV0570(const BackEndWay& way) {
    auto registers = std::make_unique<ReachedRegisters<OV0570Impl>>(way);
    bool fits = false; // of several such devices the last counts
    for (const OV0570DeviceID& device : registers->chip.getInfoLocked().devices) {
        if (device.busAddress == OV0570::tofBusAddress)
            fits = device.dataMask() >= registerMask;
    }
    if (!fits)
        throw Plugin::NotSupportedPluginException(
            "the camera has no time-of-flight controller with 16-bit registers");
    return registers;
}

std::unique_ptr<TofRegisters> reachVC0258(const BackEndWay& way) {
    return std::make_unique<VC0258Registers>(way);
}

} // namespace Zentara::IO
