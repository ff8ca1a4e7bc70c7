// Chips over the real proxy and the simulated camera's plug-in, directly and through the worker.
#include <gmock/gmock.h>

#include <zentara/core/guids.h>
#include <zentara/io/camera_chip.h>
#include <zentara/io/video_device_proxy.h>

#include "io/chips/wired_camera.h"
#include "support/simulated_faults.h"

namespace Zentara::Test {

namespace {

using TestSupport::SimulatedFaults;

class ProxiedChipTest : public testing::TestWithParam<bool> {
protected:
    void plugIn(const std::string& settings) {
        const SimulatedFaults chosen(settings);
        proxy = std::make_unique<IO::VideoDeviceProxy>(Core::Guids::MOCKVIDEODEVICE_IMPL, GetParam());
    }

    std::unique_ptr<IO::VideoDeviceProxy> proxy;
};

TEST_P(ProxiedChipTest, EachControllerIsFoundAndDriven) {
    using IO::CameraChip;
    for (const std::string& name : CameraChip::names()) {
        SCOPED_TRACE(name);
        plugIn("chip " + name);
        std::vector<IO::ChipTransfer> transfers;
        for (const bool isNamed : {false, true}) {
            const auto listen = [&](const IO::ChipTransfer& transfer) { transfers.push_back(transfer); };
            const auto chip =
                isNamed ? CameraChip::create(name, *proxy, listen) : CameraChip::detect(*proxy, listen);
            ASSERT_TRUE(chip && chip->name() == name);
            chip->write(CameraChip::Target::Tof, 5, 0x1234);
            EXPECT_EQ(chip->read(CameraChip::Target::Tof, 5), 0x1234U);
            EXPECT_EQ(transfers.back().unit, chip->unit());
            EXPECT_THAT(CameraChip::meaningOf(name, transfers.back()), testing::HasSubstr("ead"));
            EXPECT_THROW(chip->setModulationFrequency(11), Plugin::ArgumentPluginException);
            for (const unsigned megahertz : chip->modulationFrequencies())
                EXPECT_NO_THROW(chip->setModulationFrequency(megahertz));
        }
        EXPECT_THROW((void)CameraChip::create("VC0346", *proxy), Plugin::NotSupportedPluginException);
    }
    EXPECT_THAT(CameraChip::lineOf("VC0345", {true, 4, 16, {}, {}, {}, true}), HasSubstr("register 0x00"))
        << "no bytes, no harm";
    plugIn("chip none");
    EXPECT_FALSE(CameraChip::detect(*proxy));
}

// A setup that fails leaves the proxy bound: a second one is a call away.
TEST_P(ProxiedChipTest, TheProxyStaysBoundWhenItsUnitIsNotThere) {
    plugIn("chip VC0258;throw io at setup times 1");
    IO::OV0570Impl other;
    EXPECT_THROW(other.initialize(proxy.get()), Plugin::IOPluginException);
    EXPECT_THROW(other.setup(), Plugin::NotSupportedPluginException);
    IO::VC0258Impl chip;
    EXPECT_NO_THROW(chip.initialize(proxy.get()));
    EXPECT_EQ(chip.getTOFControllerFirmwareVersionLocked(), 0x2035U);
}

TEST_P(ProxiedChipTest, ALengthThatTheDeviceLayerCannotCarryIsRefused) {
    plugIn("chip OV0570");
    IO::OV0570Impl chip;
    chip.initialize(proxy.get());
    unsigned char byte = 0;
    EXPECT_THROW(chip.send(6, 0x80000000UL, 1, &byte), Plugin::ArgumentPluginException);
    if constexpr (sizeof(unsigned long) > 4) {
        const auto tooLong = static_cast<unsigned long>(0x100000001ULL);
        EXPECT_THROW(chip.send(6, 2, tooLong, &byte), Plugin::ArgumentPluginException);
        EXPECT_THROW(chip.recv(6, tooLong, 1, &byte, false), Plugin::ArgumentPluginException);
    }
}

std::string mode(const testing::TestParamInfo<bool>& info) { return info.param ? "Proxified" : "Direct"; }
INSTANTIATE_TEST_SUITE_P(Modes, ProxiedChipTest, testing::Bool(), mode);

// The third transfer is a read that hangs for longer than its caller waits.
TEST(HangingChipTest, AListStopsAtATransferThatHangsAndTheChipGoesOn) {
    const SimulatedFaults chosen("chip OV0570;transfer 3 hang 600000");
    IO::VideoDeviceProxy proxy(Core::Guids::MOCKVIDEODEVICE_IMPL, true);
    IO::OV0570Impl chip;
    chip.initialize(&proxy);
    const std::vector<SmartPtr<xuRequest>> list{
        makeRefcounted<UVCCommandRequest>(IO::UVC_TOF_CONTROLLER_REGISTER, 29U, 0U),
        makeRefcounted<UVCCommandRequest>(IO::UVC_SYNC_FPGA, 0U, 0U),
        makeRefcounted<UVCCommandRequest>(IO::UVC_TOF_CONTROLLER_REGISTER, 5U, 7U)};
    EXPECT_EQ(messageOf<Plugin::TimeoutPluginException>([&] { chip.processCommands(&list); }),
              "processRequest: I/O timeout: RequestType_XURECV");
    EXPECT_EQ(chip.getTOFControllerRegisterLocked(5), 0U) << "what came after it was not begun";
    EXPECT_EQ(chip.getTOFControllerRegisterLocked(29), 1U);
    chip.processCommands(&list);
    EXPECT_EQ(chip.getTOFControllerRegisterLocked(5), 7U);
    EXPECT_EQ(chip.getTOFControllerRegisterLocked(29), 0U) << "the toggle went on";
}

} // namespace

} // namespace Zentara::Test
