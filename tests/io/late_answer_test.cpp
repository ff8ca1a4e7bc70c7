#include <cstring>

#include <gmock/gmock.h>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/depth_configuration.h>
#include <zentara/io/audio_requests.h>
#include <zentara/io/camera_control_requests.h>
#include <zentara/io/parameter_requests.h>
#include <zentara/io/streaming_requests.h>
#include <zentara/io/transfer_requests.h>
#include <zentara/io/xu_device_requests.h>

#include "io/script.h"

namespace Testing {
namespace {

using namespace Zentara;
using namespace Zentara::IO;

using Bytes = std::vector<std::uint8_t>;
constexpr std::size_t size = 4096;

/// Devices that answer when their callers have gone and the callers' memory with them. What they touch is found out
/// by the address sanitizer; what they must not change before, by the tests.
class LateAnswerTest : public DeviceTest {
protected:
    /// The operation times out while the device holds still; once the caller's memory is gone, the device does
    /// what it was asked to.
    template<typename Request, typename Memory, typename Proxy = VideoProxy>
    void answerLate(std::unique_ptr<Memory> memory,
                    std::type_identity_t<std::function<void(Proxy&, Memory&)>> operation,
                    std::function<void(Request&)> answer, GUID guid = VIDEO_DEVICE) {
        Proxy proxy(guid, true);
        Gate gate;
        script.onCall = [&](int, deviceRequest* request) {
            gate.pass();
            answer(dynamic_cast<Request&>(*request));
        };
        tuning.set(30, 60000, 10);
        EXPECT_THROW(operation(proxy, *memory), Plugin::TimeoutPluginException);
        memory.reset();
        gate.open();
        tuning.set(2000, 60000, 10);
        Worker().settle();
        script.onCall = [](int, deviceRequest*) {};
    }

    /// With bytes, all of which are 1.
    template<typename Request>
    void transferLate(std::function<void(VideoProxy&, Bytes&)> operation,
                      std::function<void(Request&)> answer) {
        answerLate<Request, Bytes>(std::make_unique<Bytes>(size, std::uint8_t{1}), std::move(operation),
                                   std::move(answer));
    }
};

TEST_F(LateAnswerTest, Transfers) {
    transferLate<xuRecvRequest>(
        [](auto& proxy, auto& buffer) { proxy.recv(1, 2, size, buffer.data(), false); },
        [](auto& request) { std::memset(request.getData(), 2, request.getLength()); });
    transferLate<xuSendRequest>(
        [](auto& proxy, auto& buffer) { proxy.send(1, 2, size, buffer.data()); },
        [](auto& request) { EXPECT_EQ(1, static_cast<const std::uint8_t*>(request.getData())[size - 1]); });
    transferLate<xuLenRequest>([](auto& proxy, auto&) { static_cast<void>(proxy.len(1, 2)); },
                               [](auto& request) { *request.getResult() = 5; });
    transferLate<readControlTransferRequest>(
        [](auto& proxy, auto& buffer) { proxy.read(1, 2, 3, buffer.data(), size); },
        [](auto& request) { std::memset(request.getBuffer(), 2, request.getLength()); });
    transferLate<writeControlTransferRequest>(
        [](auto& proxy, auto& buffer) { proxy.write(1, 2, 3, buffer.data(), size); },
        [](auto& request) { EXPECT_EQ(1, request.getBuffer()[size - 1]); });
    transferLate<writeBulkTransferRequest>(
        [](auto& proxy, auto& buffer) { proxy.write(1, buffer.data(), size); },
        [](auto& request) { EXPECT_EQ(1, request.getData()[size - 1]); });
    answerLate<xuSetupRequest>(
        std::make_unique<GUID>(AUDIO_DEVICE), [](auto& proxy, auto& guid) { proxy.xuSetup(guid); },
        [](auto& request) { EXPECT_TRUE(guidEquals(AUDIO_DEVICE, request.getGUID())); });
}

TEST_F(LateAnswerTest, Answers) {
    using Modes = std::vector<Utils::SmartPtr<ColorConfiguration>>;
    answerLate<getCameraControlRangesRequest, CameraControlRanges>(
        std::make_unique<CameraControlRanges>(),
        [](VideoProxy& proxy, CameraControlRanges& ranges) { proxy.getCameraControlRanges(ranges); },
        [](getCameraControlRangesRequest& request) { request.getRanges().ranges[CameraControl_GAIN] = {}; });
    answerLate<getColorConfigurationsRequest, Modes>(
        std::make_unique<Modes>(), [](VideoProxy& proxy, Modes& modes) { proxy.getConfigurations(modes); },
        [](getColorConfigurationsRequest& request) {
            request.getConfigurations().push_back(Utils::makeRefcounted<ColorConfiguration>());
        });
    using Mode = Utils::SmartPtr<AudioConfiguration>;
    const auto kept = Utils::makeRefcounted<AudioConfiguration>(1, 2, 3);
    answerLate<getAudioDefaultConfigurationsRequest, Mode, AudioProxy>(
        std::make_unique<Mode>(kept),
        [](AudioProxy& proxy, Mode& mode) { proxy.getDefaultConfiguration(mode); },
        [](getAudioDefaultConfigurationsRequest& request) { request.getConfiguration()->setChannels(9); },
        AUDIO_DEVICE);
    EXPECT_EQ("AUCH1BPS2SR3", kept->getName());
}

// Nor are the inputs the caller's any more, which it may change as soon as it has its own thread back. A depth mode's
// commands are part of it.
TEST_F(LateAnswerTest, EnabledDepthMode) {
    struct ChangedAtTheEnd {
        Utils::SmartPtr<setIntParameterRequest> command =
            Utils::makeRefcounted<setIntParameterRequest>(ParameterType_NONE, 1);
        Utils::SmartPtr<DepthConfiguration> mode = Utils::makeRefcounted<DepthConfiguration>();
        ChangedAtTheEnd() { mode->setCommands({command, nullptr}); }
        ~ChangedAtTheEnd() {
            command->setValue(99);
            mode->setCommands({});
        }
    };
    answerLate<enableDepthRequest, ChangedAtTheEnd>(
        std::make_unique<ChangedAtTheEnd>(),
        [](VideoProxy& proxy, ChangedAtTheEnd& memory) {
            proxy.enableStreaming(Utils::SmartPtr<DepthBaseConfiguration>(memory.mode));
        },
        [](enableDepthRequest& request) {
            const auto& commands = request.getConfiguration()->getCommands();
            ASSERT_EQ(2U, commands.size());
            EXPECT_EQ(1, dynamic_cast<setIntParameterRequest&>(*commands[0]).getValue());
            EXPECT_EQ(nullptr, commands[1]);
        });
}

// The other way to fail: the device has written half, and then throws.
TEST_F(LateAnswerTest, AFailureLeavesTheCallersMemoryAlone) {
    VideoProxy video(VIDEO_DEVICE, true);
    script.onCall = [](int, deviceRequest* request) {
        if (auto* const receive = dynamic_cast<xuRecvRequest*>(request))
            std::memset(receive->getData(), 2, 1);
        if (auto* const ranges = dynamic_cast<getCameraControlRangesRequest*>(request))
            ranges->getRanges().ranges.clear();
        if (request)
            throw Plugin::IOPluginException("half way");
    };
    std::uint8_t buffer[2] = {1, 1};
    EXPECT_THROW(video.recv(1, 2, 2, buffer, false), Plugin::IOPluginException);
    EXPECT_EQ(1, buffer[0]);
    CameraControlRanges ranges{{{CameraControl_GAIN, {}}}};
    EXPECT_THROW(video.getCameraControlRanges(ranges), Plugin::IOPluginException);
    EXPECT_EQ(1U, ranges.ranges.size());
}

} // namespace
} // namespace Testing
