#include <array>
#include <stdexcept>

#include <gmock/gmock.h>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/core/plugin_probe.h>
#include <zentara/depth_configuration.h>
#include <zentara/io/audio_requests.h>
#include <zentara/io/av_device_interface.h>
#include <zentara/io/camera_control_requests.h>
#include <zentara/io/transfer_requests.h>
#include <zentara/io/xu_device_requests.h>
#include <zentara/node_event.h>

#include "io/script.h"
#include "support/failure.h"
#include "support/log_capture.h"
#include "support/own_exceptions.h"
#include "utils/platform/library_file.h"

namespace Testing {
namespace {

using namespace Zentara;
using namespace Zentara::IO;
using testing::ElementsAre;
using Utils::makeRefcounted;
using Utils::SmartPtr;

constexpr bool direct = false;
constexpr bool proxified = true;

std::string modeName(const testing::TestParamInfo<bool>& info) { return info.param ? "proxified" : "direct"; }

/// Both ways of calling.
class ProxyTest : public DeviceTest, public testing::WithParamInterface<bool> {
protected:
    /// What the device does in its next operation.
    void onRequest(std::function<void(deviceRequest&)> behaviour) {
        script.onCall = [behaviour = std::move(behaviour)](int, deviceRequest* request) {
            if (request)
                behaviour(*request);
        };
    }
    template<typename Request>
    void answer(std::function<void(Request&)> behaviour) {
        onRequest([behaviour = std::move(behaviour)](deviceRequest& request) {
            behaviour(dynamic_cast<Request&>(request));
        });
    }
};

INSTANTIATE_TEST_SUITE_P(Modes, ProxyTest, testing::Values(direct, proxified), modeName);

const SmartPtr<DepthConfiguration>& depthMode() {
    static const auto mode =
        makeRefcounted<DepthConfiguration>(FrameFormat_QVGA, 60, DepthNode::CameraMode_0, false, 0);
    return mode;
}
const SmartPtr<ColorConfiguration>& colorMode() {
    static const auto mode = makeRefcounted<ColorConfiguration>(FrameFormat_VGA, 30, PowerLineFrequency_50HZ,
                                                                CompressionType_MJPEG);
    return mode;
}
const SmartPtr<AudioConfiguration>& audioMode() {
    static const auto mode = makeRefcounted<AudioConfiguration>(2, 16, 44100);
    return mode;
}

const std::array<std::uint8_t, 4> outgoing{1, 2, 3, 4};

TEST_P(ProxyTest, EachVideoOperationReachesItsSlotWithItsArguments) {
    VideoProxy proxy(VIDEO_DEVICE, GetParam());
    EXPECT_THAT(script.takeSlots(), ElementsAre(6));
    proxy.threadInitialize();
    proxy.threadUninitialize();
    EXPECT_THAT(script.takeSlots(), ElementsAre(6, 7));

    onRequest([](deviceRequest& request) { EXPECT_EQ(RequestType_OPEN, request.type()); });
    proxy.open();
    onRequest([](deviceRequest& request) { EXPECT_EQ(RequestType_CLOSE, request.type()); });
    proxy.close();
    answer<disableRequest>([](auto& request) { EXPECT_TRUE(request.getFlag()); });
    proxy.disableStreaming(true);
    EXPECT_THAT(script.takeSlots(), ElementsAre(10, 11, 12));

    // The worker's device gets a copy, which the caller cannot change under it.
    const bool shared = GetParam() == direct;
    answer<enableColorRequest>([&](auto& request) {
        EXPECT_EQ(shared, colorMode() == request.getConfiguration());
        EXPECT_TRUE(colorMode()->isEqual(request.getConfiguration().get()));
        EXPECT_EQ(5, request.getControls().values.at(CameraControl_GAIN).value);
    });
    proxy.enableStreaming(colorMode(), CameraControls{{{CameraControl_GAIN, {5, false}}}});
    answer<enableDepthRequest>([&](auto& request) {
        EXPECT_EQ(shared, depthMode() == request.getConfiguration());
        EXPECT_TRUE(depthMode()->isEqual(request.getConfiguration().get()));
    });
    proxy.enableStreaming(depthMode());
    answer<setCameraControlRequest>([](auto& request) {
        EXPECT_EQ(CameraControl_HUE, request.getControl());
        EXPECT_EQ((CameraControlValue{-7, true}), request.getValue());
    });
    proxy.setCameraControl(CameraControl_HUE, {-7, true});
    EXPECT_THAT(script.takeSlots(), ElementsAre(15, 16, 17));

    answer<xuSendRequest>([](auto& request) {
        EXPECT_EQ(3U, request.getUnit());
        EXPECT_EQ(-4, request.getControl());
        ASSERT_EQ(outgoing.size(), request.getLength());
        EXPECT_EQ(0, std::memcmp(outgoing.data(), request.getData(), outgoing.size()));
    });
    proxy.send(3, -4, 4, outgoing.data());
    answer<xuSetupRequest>([](auto& request) { EXPECT_TRUE(guidEquals(AUDIO_DEVICE, request.getGUID())); });
    proxy.xuSetup(AUDIO_DEVICE);
    answer<writeControlTransferRequest>([](auto& request) {
        EXPECT_EQ(5, request.getRequestCode());
        EXPECT_EQ(6, request.getValue());
        EXPECT_EQ(7, request.getIndex());
        ASSERT_EQ(outgoing.size(), request.getLength());
        EXPECT_EQ(0, std::memcmp(outgoing.data(), request.getBuffer(), outgoing.size()));
    });
    proxy.write(5, 6, 7, outgoing.data(), 4);
    answer<writeBulkTransferRequest>([](auto& request) {
        EXPECT_EQ(8, request.getEndpoint());
        ASSERT_EQ(static_cast<std::int32_t>(outgoing.size()), request.getLength());
        EXPECT_EQ(0, std::memcmp(outgoing.data(), request.getData(), outgoing.size()));
    });
    proxy.write(8, outgoing.data(), 4);
    EXPECT_THAT(script.takeSlots(), ElementsAre(18, 21, 24, 23));

    script.onCall = [](int, deviceRequest*) {};
    proxy.pauseStreaming();
    proxy.resumeStreaming();
    EXPECT_THAT(script.takeSlots(), ElementsAre(25, 26));

    NodeEvent event;
    event.path = "usb:1";
    proxy.initialize(&event, nullptr);
    // The device keeps a copy.
    event.path.clear();
    onRequest([](deviceRequest& request) { EXPECT_EQ("usb:1", request.device()->getPath()); });
    proxy.open();
    EXPECT_THAT(script.takeSlots(), ElementsAre(5, 10));
    EXPECT_THROW(proxy.initialize(nullptr, nullptr), Plugin::ArgumentPluginException);
    // Kept so: the worker has been given back before the device disposes.
    script.onCall = [&](int slot, deviceRequest*) {
        EXPECT_EQ(GetParam() == proxified && slot == 7, proxy.getProxy() != nullptr) << slot;
    };
    proxy.dispose();
    EXPECT_THAT(script.takeSlots(), ElementsAre(7, 4));
    EXPECT_EQ(0, script.livingDevices());
    EXPECT_THROW(proxy.open(), Plugin::InvalidOperationPluginException);
    proxy.dispose();
}

TEST_P(ProxyTest, EachAudioOperationReachesItsSlotWithItsArguments) {
    {
        AudioProxy proxy(AUDIO_DEVICE, GetParam());
        proxy.threadInitialize();
        proxy.threadUninitialize();
        proxy.open();
        proxy.close();
        proxy.disableStreaming(false);
        EXPECT_THAT(script.takeSlots(), ElementsAre(6, 6, 7, 10, 11, 12));

        answer<getAudioDefaultConfigurationsRequest>(
            [](auto& request) { request.getConfiguration()->setSampleRate(8000); });
        const auto configuration = makeRefcounted<AudioConfiguration>(1, 8, 0);
        proxy.getDefaultConfiguration(configuration);
        EXPECT_EQ("AUCH1BPS8SR8000", configuration->getName());
        answer<enableAudioRequest>([](auto& request) {
            EXPECT_EQ(GetParam() == direct, audioMode() == request.getConfiguration());
            EXPECT_TRUE(audioMode()->isEqual(request.getConfiguration().get()));
            EXPECT_EQ(0.5F, request.getLevel());
            EXPECT_TRUE(request.getMute());
        });
        proxy.enableStreaming(audioMode(), 0.5F, true);
        answer<setAudioLevelRequest>([](auto& request) { EXPECT_EQ(0.25F, request.getLevel()); });
        proxy.setInputMixerLevel(0.25F);
        answer<setAudioMuteRequest>([](auto& request) { EXPECT_TRUE(request.getMute()); });
        proxy.setMute(true);
        EXPECT_THAT(script.takeSlots(), ElementsAre(13, 14, 15, 16));
        script.onCall = [](int, deviceRequest*) {};
        proxy.initialize(std::make_unique<NodeEvent>().get(), nullptr);
    }
    EXPECT_THAT(script.takeSlots(), ElementsAre(5, 7, 4));
    EXPECT_EQ(0, script.livingDevices());
}

TEST_P(ProxyTest, ResultsComeBack) {
    VideoProxy proxy(VIDEO_DEVICE, GetParam());

    answer<xuRecvRequest>([](auto& request) {
        EXPECT_EQ(3U, request.getUnit());
        EXPECT_EQ(-4, request.getControl());
        EXPECT_TRUE(request.getFlag());
        // The bytes of the question arrive as well.
        auto* const bytes = static_cast<std::uint8_t*>(request.getData());
        EXPECT_EQ(9, bytes[0]);
        bytes[1] = 10;
    });
    std::array<std::uint8_t, 2> received{9, 9};
    proxy.recv(3, -4, 2, received.data(), true);
    EXPECT_THAT(received, ElementsAre(9, 10));

    answer<xuLenRequest>([](auto& request) {
        EXPECT_EQ(3U, request.getUnit());
        EXPECT_EQ(4U, request.getControl());
        *request.getResult() = 64;
    });
    EXPECT_EQ(64, proxy.len(3, 4));

    answer<readControlTransferRequest>([](auto& request) {
        EXPECT_EQ(5, request.getRequestCode());
        EXPECT_EQ(6, request.getValue());
        EXPECT_EQ(7, request.getIndex());
        request.getBuffer()[request.getLength() - 1] = 11;
    });
    std::array<std::uint8_t, 3> buffer{};
    proxy.read(5, 6, 7, buffer.data(), 3);
    EXPECT_THAT(buffer, ElementsAre(0, 0, 11));

    answer<getCameraControlRangesRequest>([](auto& request) {
        request.getRanges().ranges[CameraControl_GAIN] = {0, 100, 1, {50, false}, true};
    });
    CameraControlRanges ranges;
    proxy.getCameraControlRanges(ranges);
    EXPECT_EQ(100, ranges.ranges.at(CameraControl_GAIN).maximum);

    answer<getColorConfigurationsRequest>([](auto& request) {
        EXPECT_EQ(GetParam() == direct ? 1U : 0U, request.getConfigurations().size());
        request.getConfigurations().push_back(colorMode());
    });
    std::vector<SmartPtr<ColorConfiguration>> modes{makeRefcounted<ColorConfiguration>()};
    proxy.getConfigurations(modes);
    ASSERT_EQ(2U, modes.size());
    EXPECT_EQ(colorMode(), modes.back());
    EXPECT_THAT(script.takeSlots(), ElementsAre(6, 19, 20, 22, 13, 14));
}

TEST_P(ProxyTest, AModeOfAnotherClassArrivesAsItIs) {
    class OwnMode : public ColorConfiguration {};
    VideoProxy proxy(VIDEO_DEVICE, GetParam());
    const auto mode = makeRefcounted<OwnMode>();
    answer<enableColorRequest>([&](auto& request) { EXPECT_EQ(mode, request.getConfiguration()); });
    proxy.enableStreaming(SmartPtr<ColorConfiguration>(mode), CameraControls{});
    answer<enableColorRequest>([&](auto& request) { EXPECT_EQ(nullptr, request.getConfiguration()); });
    proxy.enableStreaming(SmartPtr<ColorConfiguration>(), CameraControls{});
}

// Kept so: on the worker these two types have no effect.
TEST_P(ProxyTest, RegionAndOutputFormatReachTheDeviceDirectlyOnly) {
    VideoProxy proxy(VIDEO_DEVICE, GetParam());
    script.takeCalls();
    proxy.setRegionOfInterest({1, 2, 3, 4});
    proxy.setOutputFormat(setOutputFormatRequest::OutputFormat_RAW_PHASE);
    EXPECT_EQ(GetParam() == direct ? std::vector<int>({27, 28}) : std::vector<int>(), script.takeSlots());
}

TEST_P(ProxyTest, ADeviceThatOverridesNothingOptionalSaysSo) {
    VideoProxy proxy(BARE_DEVICE, GetParam());
    proxy.pauseStreaming();
    proxy.resumeStreaming();
    const auto refuses = [](const std::string& message, auto operation) {
        EXPECT_EQ(message, TestSupport::messageOf<Plugin::NotSupportedPluginException>(operation));
    };
    std::uint8_t byte = 0;
    refuses("not supported", [&] { proxy.read(0, 0, 0, &byte, 1); });
    refuses("not supported", [&] { proxy.write(0, 0, 0, &byte, 1); });
    refuses("not supported", [&] { proxy.write(0, &byte, 1); });
    if (GetParam() == direct) {
        refuses("setting region of interest is not supported", [&] { proxy.setRegionOfInterest({}); });
        refuses("setting output format is not supported",
                [&] { proxy.setOutputFormat(setOutputFormatRequest::OutputFormat_DEPTH); });
    }
}

TEST_P(ProxyTest, FailuresKeepKindAndMessage) {
    VideoProxy proxy(VIDEO_DEVICE, GetParam());
    for (int kind = 0; kind <= 8; ++kind) {
        const auto type = Plugin::PluginExceptionType(kind);
        const std::function<void(deviceRequest&)> ways[] = {
            [&](deviceRequest&) { Plugin::throwPluginException(type, "broken"); },
            [&](deviceRequest& request) { request.setFailure(type, "broken"); },
            [&](deviceRequest& request) { // what is thrown wins
                request.setFailure(Plugin::PluginExceptionType_STREAMING, "earlier");
                Plugin::throwPluginException(type, "broken");
            }};
        for (const auto& way : ways) {
            onRequest(way);
            EXPECT_EQ(std::to_string(kind) + ": broken", TestSupport::failure([&] { proxy.open(); }));
        }
    }
    // Kept so: a failure of an unknown kind throws nothing.
    onRequest([](deviceRequest& request) { request.setFailure(Plugin::PluginExceptionType(9), "odd"); });
    EXPECT_NO_THROW(proxy.open());
    script.onCall = [](int, deviceRequest*) {};
    EXPECT_NO_THROW(proxy.open());
}

TEST_P(ProxyTest, ForeignExceptions) {
    VideoProxy proxy(VIDEO_DEVICE, GetParam());
    const auto message = [&] {
        return TestSupport::messageOf<Plugin::IOPluginException>([&] { proxy.open(); });
    };
    onRequest([](deviceRequest&) { throw std::runtime_error("out of luck"); });
    if (GetParam() == direct)
        EXPECT_THROW(proxy.open(), std::runtime_error);
    else
        EXPECT_EQ("RequestType_OPEN: out of luck", message());
    onRequest([](deviceRequest&) { throw 5; });
    if (GetParam() == direct)
        EXPECT_THROW(proxy.open(), int);
    else
        EXPECT_EQ("RequestType_OPEN: unknown exception", message());
    script.onCall = [](int, deviceRequest*) {};
    EXPECT_NO_THROW(proxy.open());
}

template<typename Proxy>
std::exception_ptr failureOfUse(GUID guid, bool isProxified) {
    NodeEvent event;
    std::int64_t timestamp = 0;
    int length = 0;
    try {
        Proxy proxy(guid, isProxified);
        proxy.initialize(&event, nullptr);
        proxy.readBuffer(nullptr, 0, &timestamp, &length);
        proxy.open();
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

// The devices make the exceptions themselves: what describes these goes with them.
TEST_P(ProxyTest, ExceptionsOutliveTheDeviceThatMadeThem) {
    constexpr int initialize = 5, threadInitialize = 6, cancel = 8, readBuffer = 9, open = 10;
    const std::string library =
        Core::getPluginDirectory() + "io_leaving_device." + Core::pluginFileExtension();
    const std::vector<TestSupport::Caught> arrivals = TestSupport::ownArrivals();
    onRequest([](deviceRequest& request) {
        request.setIOPending(true);
        request.cancelIO();
    });
    for (const int slot : {initialize, threadInitialize, cancel, readBuffer, open}) {
        const bool onWorker = GetParam() == proxified && slot != initialize && slot != readBuffer;
        // The worker passes kind and text on.
        const int last = onWorker ? 9 : static_cast<int>(arrivals.size());
        for (int which = 1; which <= last; ++which) {
            script.throwingSlot = slot;
            script.ownException = which;
            const std::exception_ptr video =
                failureOfUse<VideoProxy>(onWorker ? VIDEO_DEVICE : LEAVING_DEVICE, GetParam());
            const std::exception_ptr audio = failureOfUse<AudioProxy>(AUDIO_DEVICE, GetParam());
            ASSERT_FALSE(Utils::Platform::isLibraryLoaded(library));
            EXPECT_EQ(arrivals[which - 1], TestSupport::caught(video)) << slot << ", " << which;
            EXPECT_EQ(arrivals[which - 1], TestSupport::caught(audio)) << slot << ", " << which;
        }
    }
    script.throwingSlot = 0;
}

TEST_P(ProxyTest, CallsRunWhereTheyShould) {
    NodeEvent event;
    std::int64_t timestamp = 0;
    int length = 0;
    char buffer[16];
    {
        VideoProxy video(VIDEO_DEVICE, GetParam());
        AudioProxy audio(AUDIO_DEVICE, GetParam());
        video.open();
        audio.open();
        video.close();
        const auto calls = script.takeCalls();
        for (const Script::Call& call : calls) {
            EXPECT_EQ(calls.front().thread, call.thread);
            EXPECT_EQ(GetParam() == direct, call.thread == std::this_thread::get_id());
        }
        video.threadInitialize();
        audio.threadUninitialize();
        video.initialize(&event, nullptr);
        EXPECT_EQ(77, video.readBuffer(buffer, sizeof buffer, &timestamp, &length));
        EXPECT_EQ(77, audio.readBuffer(buffer, sizeof buffer, &timestamp, &length));
        EXPECT_EQ(1234, timestamp);
        EXPECT_EQ(16, length);
        for (const Script::Call& call : script.takeCalls())
            EXPECT_EQ(std::this_thread::get_id(), call.thread);
    }
    const auto calls = script.takeCalls();
    ASSERT_EQ(4U, calls.size());
    EXPECT_EQ(GetParam() == direct, calls[0].thread == std::this_thread::get_id());
    EXPECT_EQ(std::this_thread::get_id(), calls[1].thread);
}

// A call of the streaming path must not wait behind a control call.
// Kept so: preparing a thread takes the audio proxy's mutex and not the video proxy's.
TEST_F(DeviceTest, ThreadsArePreparedBesideAVideoCallAndAfterAnAudioCall) {
    VideoProxy video(VIDEO_DEVICE, direct);
    AudioProxy audio(AUDIO_DEVICE, direct);
    script.takeCalls();
    Gate gate;
    script.onCall = [&](int slot, deviceRequest*) {
        if (slot == 10)
            gate.pass();
    };
    std::thread opening([&] { video.open(); });
    gate.awaitArrival();
    std::int64_t timestamp = 0;
    int length = 0;
    EXPECT_EQ(77, video.readBuffer(nullptr, 0, &timestamp, &length));
    video.threadInitialize();
    video.threadUninitialize();
    gate.open();
    opening.join();
    EXPECT_THAT(script.takeSlots(), ElementsAre(10, 9, 6, 7));

    opening = std::thread([&] { audio.open(); });
    gate.awaitArrival();
    std::thread preparing([&] { audio.threadInitialize(); });
    std::thread unpreparing([&] { audio.threadUninitialize(); });
    for (int i = 0; i < 1000; ++i)
        std::this_thread::yield();
    EXPECT_THAT(script.takeSlots(), ElementsAre(10));
    gate.open();
    opening.join();
    preparing.join();
    unpreparing.join();
    EXPECT_THAT(script.takeSlots(), testing::UnorderedElementsAre(6, 7));
}

TEST_P(ProxyTest, AFailedConstructionHoldsNothing) {
    const auto construct = [&](GUID guid) {
        return TestSupport::messageOf<Plugin::PluginException>([&] { VideoProxy(guid, GetParam()); });
    };
    EXPECT_THAT(construct({}), testing::StartsWith("couldn't find GUID {0,0,0,"));
    EXPECT_EQ("ImplType mismatch", construct(AUDIO_DEVICE));
    EXPECT_THAT(construct(NULL_DEVICE), testing::StartsWith("Couldn't instantiate object {10000003,1,2,"));
    EXPECT_THAT(construct(OTHER_DEVICE), testing::StartsWith("Couldn't instantiate object {10000005,1,2,"));
    EXPECT_THAT(construct(MISNAMED_DEVICE),
                testing::StartsWith("Couldn't instantiate object {10000008,1,2,"));
    EXPECT_EQ(0, script.loadedLibraries());
    EXPECT_EQ(0, script.livingDevices());

    script.onCall = [](int, deviceRequest*) { throw Plugin::IOPluginException("no service on this thread"); };
    EXPECT_EQ("no service on this thread", construct(VIDEO_DEVICE));
    EXPECT_THROW(AudioProxy(AUDIO_DEVICE, GetParam()), Plugin::IOPluginException);
    // Neither the thread's preparation nor the device's is taken back.
    EXPECT_THAT(script.takeSlots(), ElementsAre(6, 6));
    EXPECT_EQ(0, script.livingDevices());
}

TEST_P(ProxyTest, DisposalGoesOnAfterFailures) {
    const TestSupport::LogCapture log;
    {
        VideoProxy video(VIDEO_DEVICE, GetParam());
        AudioProxy audio(AUDIO_DEVICE, GetParam());
        script.takeCalls();
        script.onCall = [](int, deviceRequest*) { throw std::runtime_error("too late"); };
    }
    EXPECT_THAT(script.takeSlots(), ElementsAre(7, 4, 7, 4));
    EXPECT_THAT(log.warnings(), testing::IsSupersetOf({"Failed to call threadUninitialize",
                                                       "threadUninitialize operation failed"}));
}

} // namespace
} // namespace Testing
