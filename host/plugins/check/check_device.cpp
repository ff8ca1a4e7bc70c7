#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/depth_configuration.h>
#include <zentara/io/audio_device_interface.h>
#include <zentara/io/audio_requests.h>
#include <zentara/io/camera_control_requests.h>
#include <zentara/io/streaming_requests.h>
#include <zentara/io/transfer_requests.h>
#include <zentara/io/video_device_interface.h>
#include <zentara/io/xu_device_requests.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

#include "host/plugins/check/check_subject.h"

namespace Zentara::Host::Check {
namespace {

using Utils::Format;
using Utils::makeRefcounted;
using Utils::SmartPtr;

constexpr std::uint32_t unknownUnit = 250;   ///< no camera has so many extension units
constexpr std::int32_t unknownControl = 250; ///< nor a unit so many controls

/// A device in the hands of a proxy: requests come on the worker's thread, the rest on this one.
template<typename Device>
class DeviceCheck {
public:
    DeviceCheck(Subject& checked, Device& object) : subject(checked), run(checked.run), device(object) {}

    /// Sends a request with these arguments, as the worker does.
    template<typename Request, typename... Arguments>
    bool ask(const char* name, Wanted wanted, void (Device::*operation)(Request*), Arguments&&... arguments) {
        return run.step({operationsPart, name}, wanted, [&] { send<Request>(operation, arguments...); });
    }
    template<typename Request, typename... Arguments>
    void send(void (Device::*operation)(Request*), Arguments&... arguments) {
        const auto request = makeRefcounted<Request>(&device, arguments...);
        worker.run([&] { (device.*operation)(request.get()); });
        if (!request->failed())
            return;
        const auto failure = request->getFailure();
        Plugin::throwPluginException(failure.type, failure.message);
    }

    /// What is asked of a device that has a camera; without one it may refuse everything.
    [[nodiscard]] Wanted sane(Wanted wanted) const {
        return found.view() != nullptr ? wanted : Wanted::Either;
    }

    void open(const char* name, Wanted wanted) {
        ask<IO::deviceRequest>(name, wanted, &Device::open, IO::RequestType_OPEN);
    }
    void close(const char* name, Wanted wanted) {
        ask<IO::deviceRequest>(name, wanted, &Device::close, IO::RequestType_CLOSE);
    }
    void disable(const char* name, Wanted wanted) {
        ask<IO::disableRequest>(name, wanted, &Device::disableStreaming, false);
    }
    void disableNow() {
        bool flag = false;
        send<IO::disableRequest>(&Device::disableStreaming, flag);
    }
    [[nodiscard]] Reader reader() {
        return [this](void* buffer, int size, std::int64_t* timestamp, int* length) {
            return device.readBuffer(buffer, size, timestamp, length);
        };
    }

    /// From a new object to one that is open, with the wrong turns before and on the way.
    void begin(NodeType usual) {
        run.step({operationsPart, "threadInitialize"}, Wanted::Success,
                 [this] { worker.run([this] { device.threadInitialize(); }); });
        checkReadingWithoutStream(run, "before initialize", reader());
        run.step({operationsPart, "initialize without an event"}, Wanted::Refusal,
                 [this] { device.initialize(nullptr, nullptr); });
        found = findNode(subject, [this](const NodeEvent&, const Core::DescriptorStoreRO& view) {
            return isSame(view.getDeviceImplGUID(), subject.guid);
        });
        if (found.view() == nullptr) {
            found.event.path = "check";
            found.event.serialNumber = "CHECK";
            found.event.nodeType = usual;
        }
        run.step({operationsPart, "initialize"}, sane(Wanted::Success), [this]() -> std::string {
            device.initialize(&found.event, found.view());
            return "path " + device.getPath();
        });
        close("close before open", Wanted::Either);
        open("open", sane(Wanted::Success));
        open("open a second time", Wanted::Either);
        checkReadingWithoutStream(run, "without a stream", reader());
        disable("disableStreaming without a stream", Wanted::Either);
        run.step({operationsPart, "cancelIO with nothing in flight"}, Wanted::Success,
                 [this]() -> std::string { return std::string(device.cancelIO() ? "true" : "false"); });
    }

    /// From a stream that has ended to the end of the object's use, through a stream that nobody ends.
    void finish(const std::function<bool()>& startAgain) {
        disable("disableStreaming a second time", Wanted::Either);
        checkReadingWithoutStream(run, "after the stream's end", reader());
        startAgain();
        close("close while it streams", Wanted::Either);
        close("close a second time", Wanted::Either);
        open("open once more", sane(Wanted::Success));
        run.step({endingPart, "threadUninitialize"}, Wanted::Success,
                 [this] { worker.run([this] { device.threadUninitialize(); }); });
        run.step({endingPart, "dispose while it is open"}, Wanted::Success, [this] { device.dispose(); });
        run.step({endingPart, "dispose a second time"}, Wanted::Success, [this] { device.dispose(); });
    }

    Subject& subject;
    CheckRun& run;
    Device& device;
    FoundNode found;

private:
    OtherThread worker;
};

using VideoCheck = DeviceCheck<IO::VideoDeviceInterface>;
using AudioCheck = DeviceCheck<IO::AudioDeviceInterface>;

/// Ours are no modes of any device.
SmartPtr<DepthBaseConfiguration> oddDepthMode() {
    return SmartPtr<DepthBaseConfiguration>(makeRefcounted<DepthConfiguration>(
        static_cast<FrameFormat>(-7), -1, DepthNode::CameraMode_0, false, std::int16_t{0}));
}

SmartPtr<ColorConfiguration> oddColorMode() {
    return makeRefcounted<ColorConfiguration>(static_cast<FrameFormat>(-7), -1, PowerLineFrequency_DISABLED,
                                              static_cast<CompressionType>(99));
}

void checkControls(VideoCheck& check) {
    using Device = IO::VideoDeviceInterface;
    CameraControlRanges ranges;
    check.ask<IO::getCameraControlRangesRequest>("getCameraControlRanges", check.sane(Wanted::Optional),
                                                 &Device::getCameraControlRanges, ranges);
    for (const auto& [control, range] : ranges.ranges) {
        check.ask<IO::setCameraControlRequest>("setCameraControl to its default", Wanted::Success,
                                               &Device::setCameraControl, control, range.defaultValue);
        CameraControlValue beyond;
        beyond.value = std::numeric_limits<std::int32_t>::max();
        check.ask<IO::setCameraControlRequest>("setCameraControl beyond its range", Wanted::Refusal,
                                               &Device::setCameraControl, control, beyond);
        break;
    }
    const auto unknown = static_cast<CameraControlsEnum>(9999);
    check.ask<IO::setCameraControlRequest>("setCameraControl of an unknown control", Wanted::Refusal,
                                           &Device::setCameraControl, unknown, CameraControlValue());
}

void checkTransfers(VideoCheck& check) {
    using Device = IO::VideoDeviceInterface;
    const GUID nobody{0x6E6F626F, 0x6479, 0x7327, {0x75, 0x6E, 0x69, 0x74, 0, 0, 0, 1}};
    std::int32_t length = 0;
    std::uint8_t byte = 0;
    std::uint8_t* const data = &byte;
    check.ask<IO::xuSetupRequest>("xuSetup of a unit that no camera has", Wanted::Either, &Device::xuSetup,
                                  nobody);
    check.ask<IO::xuLenRequest>("len of an unknown control", Wanted::Either, &Device::len, unknownUnit,
                                static_cast<std::uint32_t>(unknownControl), &length);
    check.ask<IO::xuSendRequest>("send to an unknown control", Wanted::Refusal, &Device::send, unknownUnit,
                                 unknownControl, 1U, data);
    check.ask<IO::xuRecvRequest>("recv from an unknown control", Wanted::Refusal, &Device::recv, unknownUnit,
                                 unknownControl, 1U, data, false);
    check.ask<IO::xuRecvRequest>("recv of no bytes", Wanted::Either, &Device::recv, unknownUnit,
                                 unknownControl, 0U, static_cast<void*>(nullptr), false);
    check.ask<IO::readControlTransferRequest>("read of a control transfer that no camera has", Wanted::Either,
                                              &Device::read, std::uint8_t{0xFE}, std::uint16_t{0xFFFF},
                                              std::uint16_t{0xFFFF}, data, std::uint16_t{1});
    check.ask<IO::writeControlTransferRequest>("write of no bytes by a control transfer", Wanted::Either,
                                               &Device::write, std::uint8_t{0xFE}, std::uint16_t{0xFFFF},
                                               std::uint16_t{0xFFFF},
                                               static_cast<const std::uint8_t*>(nullptr), std::uint16_t{0});
    check.ask<IO::writeBulkTransferRequest>("write of no bytes to an endpoint that no camera has",
                                            Wanted::Either, &Device::write, std::uint8_t{0x7F},
                                            static_cast<const std::uint8_t*>(nullptr), 0);
}

void checkStreamSettings(VideoCheck& check) {
    using Device = IO::VideoDeviceInterface;
    constexpr auto most = std::numeric_limits<std::uint32_t>::max();
    check.ask<IO::pauseStreamingRequest>("pauseStreaming", Wanted::Optional, &Device::pauseStreaming);
    check.ask<IO::resumeStreamingRequest>("resumeStreaming", Wanted::Optional, &Device::resumeStreaming);
    check.ask<IO::setDeviceRegionOfInterestRequest>("setRegionOfInterest beyond every sensor",
                                                    Wanted::Refusal, &Device::setRegionOfInterest,
                                                    RegionOfInterestInternal{most, most, most, most});
    check.ask<IO::setOutputFormatRequest>("setOutputFormat to an unknown one", Wanted::Refusal,
                                          &Device::setOutputFormat,
                                          static_cast<IO::setOutputFormatRequest::OutputFormat>(99));
}

/// What the camera's node streams; without a camera whatever the device takes.
class VideoStream {
public:
    VideoStream(VideoCheck& used, std::vector<SmartPtr<ColorConfiguration>> modes)
        : check(used), reported(std::move(modes)) {}

    /// Finds a mode. \return whether it streams now
    bool begin() {
        if (const Core::DescriptorStoreRO* const view = check.found.view())
            return choose(*view) && start("", Wanted::Success);
        const bool isDepth =
            check.run.step({operationsPart, "enableDepthStreaming in a usual size"}, Wanted::Either,
                           [this]() -> std::string { return tryDepthSizes(); });
        return isDepth || (chooseReported() && start("", Wanted::Either));
    }

    /// Starts it in the same mode. \return whether it streams then
    bool start(const std::string& when, Wanted wanted) {
        using Device = IO::VideoDeviceInterface;
        if (depth)
            return check.ask<IO::enableDepthRequest>(("enableDepthStreaming" + when).c_str(), wanted,
                                                     &Device::enableDepthStreaming, depth);
        return color &&
               check.ask<IO::enableColorRequest>(("enableColorStreaming" + when).c_str(), wanted,
                                                 &Device::enableColorStreaming, color, CameraControls());
    }

private:
    bool choose(const Core::DescriptorStoreRO& view) {
        const auto depths = view.getDepthConfigurations();
        const auto colors = view.getColorConfigurations();
        if (check.found.event.nodeType == NodeType_DEPTH && !depths.empty())
            depth = depths.front();
        else if (!colors.empty())
            color = colors.front();
        return depth || color || chooseReported();
    }

    bool chooseReported() {
        if (!reported.empty())
            color = reported.front();
        return static_cast<bool>(color);
    }

    std::string tryDepthSizes() {
        for (const FrameFormat format :
             {FrameFormat_QVGA, FrameFormat_QQVGA, FrameFormat_VGA, FrameFormat_HD720}) {
            SmartPtr<DepthBaseConfiguration> mode(makeRefcounted<DepthConfiguration>(
                format, 30, DepthNode::CameraMode_0, false, std::int16_t{0}));
            try {
                check.send<IO::enableDepthRequest>(&IO::VideoDeviceInterface::enableDepthStreaming, mode);
                depth = mode;
                return mode->getName();
            } catch (const Plugin::ConfigurationPluginException&) {
                continue; // NOLINT: another size, then
            }
        }
        throw Finding{StepVerdict::NotRun, "it takes none of them", "",
                      "put a description that names it into the install root"};
    }

    VideoCheck& check;
    const std::vector<SmartPtr<ColorConfiguration>> reported;
    SmartPtr<DepthBaseConfiguration> depth; ///< one of these two, or none
    SmartPtr<ColorConfiguration> color;
};

void checkVideo(Subject& subject, IO::VideoDeviceInterface& device) {
    using Device = IO::VideoDeviceInterface;
    VideoCheck check(subject, device);
    check.begin(NodeType_DEPTH);
    checkControls(check);
    checkTransfers(check);
    std::vector<SmartPtr<ColorConfiguration>> reported;
    check.ask<IO::getColorConfigurationsRequest>("getConfigurations", check.sane(Wanted::Optional),
                                                 &Device::getConfigurations, reported);
    check.ask<IO::enableDepthRequest>("enableDepthStreaming without a mode", Wanted::Refusal,
                                      &Device::enableDepthStreaming, SmartPtr<DepthBaseConfiguration>());
    check.disable("disableStreaming after that", Wanted::Either);
    check.ask<IO::enableDepthRequest>("enableDepthStreaming in a mode of -7 pixels", Wanted::Either,
                                      &Device::enableDepthStreaming, oddDepthMode());
    check.disable("disableStreaming after that, too", Wanted::Either);
    check.ask<IO::enableColorRequest>("enableColorStreaming without a mode", Wanted::Refusal,
                                      &Device::enableColorStreaming, SmartPtr<ColorConfiguration>(),
                                      CameraControls());
    check.disable("disableStreaming after this", Wanted::Either);
    check.ask<IO::enableColorRequest>("enableColorStreaming in a mode of -7 pixels", Wanted::Either,
                                      &Device::enableColorStreaming, oddColorMode(), CameraControls());
    check.disable("disableStreaming after this, too", Wanted::Either);
    VideoStream stream(check, reported);
    if (stream.begin()) {
        checkReading(check.run, check.reader());
        checkStreamSettings(check);
        stream.start(" while it streams", Wanted::Refusal);
        checkReadingBeside(
            check.run, check.reader(), "len",
            [&] {
                std::int32_t length = 0;
                std::int32_t* result = &length;
                std::uint32_t unit = unknownUnit;
                std::uint32_t control = unknownControl;
                CheckRun::quietly([&] { check.send<IO::xuLenRequest>(&Device::len, unit, control, result); });
            },
            [&] { check.disableNow(); });
    }
    check.finish([&] { return stream.start(" again", check.sane(Wanted::Success)); });
}

void checkAudio(Subject& subject, IO::AudioDeviceInterface& device) {
    using Device = IO::AudioDeviceInterface;
    AudioCheck check(subject, device);
    check.begin(NodeType_AUDIO);
    const auto mode = makeRefcounted<AudioConfiguration>(2, 16, 48000);
    const auto patience = check.sane(Wanted::Success);
    check.ask<IO::getAudioDefaultConfigurationsRequest>("getDefaultConfiguration", patience,
                                                        &Device::getDefaultConfiguration, mode);
    check.ask<IO::getAudioDefaultConfigurationsRequest>("getDefaultConfiguration into nothing",
                                                        Wanted::Either, &Device::getDefaultConfiguration,
                                                        SmartPtr<AudioConfiguration>());
    check.ask<IO::enableAudioRequest>("enableStreaming without a mode", Wanted::Refusal,
                                      &Device::enableStreaming, SmartPtr<AudioConfiguration>(), 1.0F, false);
    check.disable("disableStreaming after that", Wanted::Either);
    check.ask<IO::enableAudioRequest>("enableStreaming with -1 channels", Wanted::Refusal,
                                      &Device::enableStreaming,
                                      makeRefcounted<AudioConfiguration>(-1, 3, -48000), 1.0F, false);
    check.disable("disableStreaming after that, too", Wanted::Either);
    const auto start = [&](const char* name) {
        return check.ask<IO::enableAudioRequest>(name, patience, &Device::enableStreaming, mode, 1.0F, false);
    };
    if (start("enableStreaming")) {
        checkReading(check.run, check.reader());
        check.ask<IO::setAudioLevelRequest>("setInputMixerLevel to the middle", Wanted::Optional,
                                            &Device::setInputMixerLevel, 0.5F);
        check.ask<IO::setAudioLevelRequest>("setInputMixerLevel to 2", Wanted::Refusal,
                                            &Device::setInputMixerLevel, 2.0F);
        check.ask<IO::setAudioLevelRequest>("setInputMixerLevel to no number", Wanted::Refusal,
                                            &Device::setInputMixerLevel,
                                            std::numeric_limits<float>::quiet_NaN());
        check.ask<IO::setAudioMuteRequest>("setMute off", Wanted::Optional, &Device::setMute, false);
        checkReadingBeside(
            check.run, check.reader(), "setMute",
            [&] {
                bool mute = false;
                CheckRun::quietly([&] { check.send<IO::setAudioMuteRequest>(&Device::setMute, mute); });
            },
            [&] { check.disableNow(); });
    }
    check.finish([&] { return start("enableStreaming again"); });
}

} // namespace

void checkDevice(Subject& subject, Core::Plugin& object) {
    if (auto* const video = dynamic_cast<IO::VideoDeviceInterface*>(&object))
        checkVideo(subject, *video);
    else if (auto* const audio = dynamic_cast<IO::AudioDeviceInterface*>(&object))
        checkAudio(subject, *audio);
}

} // namespace Zentara::Host::Check
