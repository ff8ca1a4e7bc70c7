// The simulated controllers by their bytes, without any chip: what they refuse and what wrong settings do to data.

#include <gmock/gmock.h>

#include <zentara/plugin/plugin_exceptions.h>

#include "plugins/simulated/firmware/ov0570_firmware.h"
#include "plugins/simulated/firmware/vc0258_firmware.h"
#include "plugins/simulated/port.h"

namespace Zentara::Simulated {

namespace {

using Plugin::IOPluginException;
using Plugin::NotSupportedPluginException;

template<typename Model>
class Wire {
public:
    Wire() : port(std::make_unique<Model>(typename Model::Settings{})) { port.select(port.model().guid()); }

    void set(std::uint32_t control, Bytes packet) {
        packet.resize(size(control));
        port.set(port.model().unit(), control, packet.data(), packet.size());
    }
    Bytes get(std::uint32_t control, Bytes request) {
        request.resize(size(control));
        port.get(port.model().unit(), control, request.data(), request.size());
        return request;
    }

    Port port;

private:
    std::size_t size(std::uint32_t control) {
        return static_cast<std::size_t>(port.length(port.model().unit(), control));
    }
};

TEST(OV0570FirmwareTest, RefusesWidthsThatAreNotTheDevices) {
    Wire<OV0570Firmware> wire;
    EXPECT_NO_THROW(wire.set(2, {0x11, 5, 0, 1, 2}));
    EXPECT_EQ(wire.get(2, {0x91, 5})[4], 2);
    for (const std::uint8_t head : {0x01, 0x31, 0x13, 0x91}) {
        EXPECT_THROW(wire.set(2, {head, 5}), IOPluginException) << int{head};
    }
    EXPECT_THROW(wire.get(2, {0x11, 5}), IOPluginException);
    EXPECT_THROW(wire.set(1, {}), IOPluginException);
}

TEST(VC0258FirmwareTest, AWrongOrderExchangesBytesAndAWrongSizeLosesThem) {
    Wire<VC0258Firmware> wire;
    const Bytes write{0x43, 1, 0x12, 5, 0, 0, 0x34, 0x12};
    const auto stored = [&] { return static_cast<VC0258Firmware&>(wire.port.model()).device(0x21).peek(5); };
    wire.set(4, {0x20, 0x02, 0x81, 9});
    wire.set(16, write);
    EXPECT_EQ(stored(), 0x3412U) << "the bridge was told order 0";
    wire.set(4, {0x20, 0x39, 0xB4, 1});
    wire.set(16, write);
    EXPECT_EQ(stored(), 0x1234U);
    EXPECT_EQ(wire.get(16, {0x46, 1, 0x02, 5})[6], 0x12) << "exchanged on the way back, too";
    EXPECT_EQ(wire.get(16, {0x46, 1, 0x12, 5})[6], 0x34);
    wire.set(4, {0x20, 0x02, 0x81, 7});
    wire.set(16, write);
    EXPECT_EQ(stored(), 0x0034U);
    wire.set(4, {0x20, 0x02, 0x81, 0});
    EXPECT_THROW(wire.set(16, write), IOPluginException);
}

TEST(PortTest, ChecksUnitControlAndLengthAndWantsASelection) {
    Port port(std::make_unique<OV0570Firmware>(OV0570Firmware::Settings{}));
    Bytes packet(7);
    EXPECT_THROW(port.set(6, 2, packet.data(), 7), IOPluginException);
    EXPECT_THROW(port.select(::GUID{}), NotSupportedPluginException);
    port.select(port.model().guid());
    for (const auto& [unit, control, length] : {std::tuple{5U, 2U, 7U}, {6U, 4U, 7U}, {6U, 2U, 6U}})
        EXPECT_THROW(port.set(unit, control, packet.data(), length), IOPluginException) << unit << control;
}

} // namespace

} // namespace Zentara::Simulated
