#include <algorithm>
#include <cstdint>

#include <gmock/gmock.h>

#include <zentara/core/guids.h>
#include <zentara/depth_configuration.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/io/xu_device_requests.h>
#include <zentara/utils/clock.h>

#include "plugins/simulated/firmware/ov0570_firmware.h"
#include "plugins/simulated/port.h"
#include "plugins/simulated/stream_clock.h"
#include "support/simulated_faults.h"
#include "tests/plugins/camera_host.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

using TestSupport::failure;
using TestSupport::read;
using OutputFormat = IO::setOutputFormatRequest::OutputFormat;

Utils::SmartPtr<DepthBaseConfiguration> depthMode(FrameFormat format = FrameFormat_QVGA) {
    return Utils::makeRefcounted<DepthConfiguration>(format, framesPerSecond, DepthNode::CameraMode_0, false,
                                                     std::int16_t{0});
}

class SimulatedDevice : public testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(Both, SimulatedDevice, testing::Bool(),
                         [](const auto& mode) { return mode.param ? "Proxified" : "Direct"; });

TEST_P(SimulatedDevice, AnswersEveryOperationInItsState) {
    const TestSupport::SimulatedFaults withoutController("chip none");
    const auto camera = std::make_unique<IO::VideoDeviceProxy>(Core::Guids::MOCKVIDEODEVICE_IMPL, GetParam());
    const auto expect = [](const char* kind, const char* text, const std::function<void()>& step) {
        EXPECT_THAT(failure(step), testing::AllOf(testing::StartsWith(kind), testing::HasSubstr(text)));
    };
    EXPECT_EQ(read(camera).status, ReadBufferStatus_NOT_STREAMING);
    expect("7: ", "enableDepth: the device is closed", [&] { camera->enableStreaming(depthMode()); });
    expect("7: ", "close: the device is closed", [&] { camera->close(); });
    camera->open();
    expect("7: ", "open: the device is open already", [&] { camera->open(); });
    expect("1: ", "no mode DEFF3FR60CM0S0", [&] { camera->enableStreaming(depthMode(FrameFormat_VGA)); });
    camera->enableStreaming(depthMode());
    expect("7: ", "the device is streaming", [&] { camera->enableStreaming(depthMode()); });

    const auto small = read(camera, 100);
    EXPECT_EQ(small.status, ReadBufferStatus_TOO_SMALL);
    EXPECT_EQ(small.length, static_cast<int>(frameBytes));
    expect("3: ", "readBuffer: a pointer is null", [&] { camera->readBuffer(nullptr, 0, nullptr, nullptr); });

    std::uint8_t byte = 0;
    expect("5: ", "send: the simulated camera has no controller", [&] { camera->send(1, 2, 1, &byte); });
    expect("5: ", "recv:", [&] { camera->recv(1, 2, 1, &byte, false); });
    expect("5: ", "len:", [&] { (void)camera->len(1, 2); });
    expect("5: ", "setup:", [&] { camera->xuSetup(GUID{}); });

    camera->pauseStreaming();
    for (int frames = 0; read(camera).status != ReadBufferStatus_TIMEOUT; ++frames)
        ASSERT_LT(frames, 9) << "those that had come";
    camera->resumeStreaming();
    EXPECT_EQ(read(camera).status, ReadBufferStatus_OK);
    camera->disableStreaming(false);
    EXPECT_EQ(read(camera).status, ReadBufferStatus_NOT_STREAMING);
    camera->enableStreaming(depthMode());
    camera->close();
    EXPECT_EQ(read(camera).status, ReadBufferStatus_NOT_STREAMING) << "closing ends the stream";
}

/// These two operations do not reach a device through the worker.
TEST(DirectVideoDevice, CropsAndLeavesConfidenceAway) {
    const auto camera = std::make_unique<IO::VideoDeviceProxy>(Core::Guids::MOCKVIDEODEVICE_IMPL, false);
    EXPECT_THAT(failure([&] { camera->setRegionOfInterest({300, 0, 21, 1}); }), testing::StartsWith("3: "));
    EXPECT_THAT(failure([&] { camera->setOutputFormat(OutputFormat::OutputFormat_RAW_PHASE); }),
                testing::StartsWith("5: "));
    camera->setRegionOfInterest({100, 50, 20, 10});
    camera->setOutputFormat(OutputFormat::OutputFormat_DEPTH);
    camera->open();
    camera->enableStreaming(depthMode());
    const auto frame = read(camera);
    EXPECT_EQ(frame.length, static_cast<int>(confidenceOffset));
    const std::vector<std::uint16_t> depth = frame.plane(0);
    for (std::size_t i = 0; i < pixelCount; ++i) {
        const bool inside = i % frameWidth / 20 == 5 && i / frameWidth / 10 == 5;
        ASSERT_TRUE(inside || depth[i] == 0) << i;
    }
    EXPECT_LT(std::count(depth.begin(), depth.end(), 0), pixelCount - 150) << "most of it is seen";
}

TEST(PortTest, ChecksUnitControlAndLengthAndWantsASelection) {
    Port port(std::make_unique<OV0570Firmware>(OV0570Firmware::Settings{}));
    Bytes packet(7);
    EXPECT_THROW(port.set(6, 2, packet.data(), 7), Plugin::IOPluginException);
    EXPECT_THROW(port.select(::GUID{}), Plugin::NotSupportedPluginException);
    port.select(port.model().guid());
    for (const auto& [unit, control, length] : {std::tuple{5U, 2U, 7U}, {6U, 4U, 7U}, {6U, 2U, 6U}})
        EXPECT_THROW(port.set(unit, control, packet.data(), length), Plugin::IOPluginException)
            << unit << control;
}

TEST(StreamClock, DropsWhatALateReaderMissed) {
    StreamClock clock(60, 4);
    clock.startAt(Utils::Clock::nowMicros() - 10'000'000); // the reader comes ten seconds late
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    std::int64_t due = 0;
    ASSERT_EQ(clock.waitForNext(first, due), StreamClock::Turn::Due);
    EXPECT_GE(first, 597U);
    ASSERT_EQ(clock.waitForNext(second, due), StreamClock::Turn::Due);
    EXPECT_GT(second, first);
    EXPECT_GE(Utils::Clock::nowMicros(), due) << "never early";
}

} // namespace
} // namespace Zentara::Simulated
