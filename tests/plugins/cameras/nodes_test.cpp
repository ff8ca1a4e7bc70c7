#include <algorithm>
#include <atomic>
#include <map>
#include <optional>
#include <regex>
#include <thread>

#include <gmock/gmock.h>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/core/audio_node_interface.h>
#include <zentara/core/color_node_interface.h>
#include <zentara/core/depth_node_interface.h>
#include <zentara/core/descriptor_details.h>
#include <zentara/core/guids.h>
#include <zentara/core/periodic_operation.h>
#include <zentara/depth_configuration.h>
#include <zentara/io/audio_device_proxy.h>
#include <zentara/io/parameter_requests.h>
#include <zentara/io/uvc_command_request.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/raw_output_mode.h>
#include <zentara/rom/chunked_memory_manager.h>
#include <zentara/rom/configuration.h>
#include <zentara/rom/container.h>
#include <zentara/rom/diagnostic.h>
#include <zentara/rom/rom.h>
#include <zentara/rom/system_calibration.h>
#include <zentara/rom/system_info.h>
#include <zentara/utils/files.h>

#include "plugins/cameras/nodes/color_node.h"
#include "plugins/cameras/nodes/depth_frame.h"
#include "plugins/simulated/sensors.h"
#include "support/log_capture.h"
#include "support/rom_image.h"
#include "tests/plugins/camera_host.h"

namespace Zentara {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::Le;
using testing::SizeIs;
using TestSupport::failure;
using TestSupport::Frame;
using TestSupport::HostedNode;
using TestSupport::read;
using Utils::makeRefcounted;
using DepthHost = HostedNode<Core::DepthNodeInterface>;
using ColorHost = HostedNode<Core::ColorNodeInterface>;
using AudioHost = HostedNode<Core::AudioNodeInterface>;

template<typename Operation>
void refuses(const char* text, Operation operation) {
    EXPECT_THAT(failure(operation), HasSubstr(text));
}

/// One that is initialized.
template<typename Hosted>
struct Started : Hosted {
    explicit Started(const NodeEvent& found) : Hosted(found) { this->initialize(); }
};

/// A register of the time-of-flight controller and what was written to it.
using Write = std::pair<unsigned, unsigned>;

class NodeTest : public testing::Test {
protected:
    /// One camera, with its transfers logged.
    void plugOne(const std::string& model, const std::string& settings = {}) {
        host.plug(R"({"model": ")" + model + R"(", "settings": "transferLog )" + host.path("transfers") +
                  ";" + settings + "\"}");
    }

    /// The registers written since the last call, in their order.
    std::vector<Write> writes() {
        const std::regex pattern(
            "write (?:device 1|time-of-flight|address 0x21) register 0x([0-9A-F]+) := 0x([0-9A-F]+)");
        std::vector<Write> found;
        const std::string text = Utils::readFile(host.path("transfers"));
        const std::string fresh = text.substr(seen);
        seen = text.size();
        for (std::sregex_iterator at(fresh.begin(), fresh.end(), pattern), end; at != end; ++at)
            found.emplace_back(std::stoul((*at)[1], nullptr, 16), std::stoul((*at)[2], nullptr, 16));
        return found;
    }

    std::size_t transfers() const {
        const std::string text = Utils::readFile(host.path("transfers"));
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    }

    TestSupport::CameraHost host;
    std::size_t seen = 0;
};

/// The depth node of a camera behind each controller.
class DepthNodeTest : public NodeTest, public testing::WithParamInterface<const char*> {
protected:
    DepthNodeTest() { plugOne(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Cameras, DepthNodeTest, testing::Values("ZS570", "ZS258", "ZS345"),
                         [](const auto& camera) { return camera.param; });

TEST_P(DepthNodeTest, SendsItsCommandsWhenItStartsAndStops) {
    Started<DepthHost> camera(host.find(NodeType_DEPTH));
    const auto modes = camera->getConfigurations();
    ASSERT_THAT(modes, SizeIs(2));
    writes();

    camera->enableStreaming(modes[1]);
    EXPECT_THAT(writes(), ElementsAre(Write{65, 1}, Write{66, 1}, Write{64, 1}))
        << "pre-common, the mode's own, post-common";
    std::uint32_t value = 0;
    EXPECT_TRUE(camera.view().getValue(66, value));
    EXPECT_EQ(value, 1U);
    refuses("streams already", [&] { camera->enableStreaming(modes[0]); });

    camera->setConfiguration(modes[0]);
    EXPECT_THAT(writes(), ElementsAre(Write{66, 0}, Write{64, 1}));
    camera->disableStreaming();
    EXPECT_THAT(writes(), ElementsAre(Write{64, 0}, Write{65, 0}));
    camera->disableStreaming();
    EXPECT_THAT(writes(), SizeIs(0)) << "it had stopped";
    EXPECT_FALSE(camera.view().getValue(66, value));

    camera->enableStreaming(modes[0]);
    writes();
    camera->dispose();
    EXPECT_THAT(writes(), ElementsAre(Write{64, 0}, Write{65, 0})) << "disposing stops";
}

TEST_P(DepthNodeTest, DeliversDepthConfidenceAndPhase) {
    Started<DepthHost> camera(host.find(NodeType_DEPTH));
    const auto scaling = static_cast<double>(camera->getPhaseScaling());
    EXPECT_NEAR(scaling, 7495.0 / 65536, 0.001);
    camera->enableStreaming(camera->getConfigurations().front());
    EXPECT_EQ(read(camera, 100).status, ReadBufferStatus_TOO_SMALL);
    std::int64_t before = 0;
    for (const int mode : {RawOutputMode_PHASE_AND_CONFIDENCE, RawOutputMode_PHASE, RawOutputMode_TAPS}) {
        camera->process(makeRefcounted<IO::setIntParameterRequest>(ParameterType_RAW_OUTPUT_MODE, mode));
        const Frame frame = read(camera);
        ASSERT_EQ(frame.status, ReadBufferStatus_OK);
        ASSERT_EQ(frame.length, static_cast<int>(Cameras::depthFrameBytes));
        EXPECT_GT(frame.micros, before);
        before = frame.micros;
        const auto depth = frame.plane(Cameras::depthOffset);
        const auto phase = frame.plane(Cameras::depthFramePhaseOffset);
        std::size_t seenPixels = 0;
        for (std::size_t i = 0; i < depth.size(); ++i) {
            ASSERT_NEAR(phase[i] * scaling, depth[i], 1) << mode << " " << i;
            seenPixels += depth[i] > 500 && depth[i] < 3000;
        }
        EXPECT_GT(seenPixels, depth.size() / 2) << mode;
    }
    camera->process(makeRefcounted<IO::setBoolParameterRequest>(ParameterType_BOOL_7, false));
    const auto dark = read(camera).plane(Cameras::depthOffset);
    EXPECT_TRUE(std::all_of(dark.begin(), dark.end(), [](int value) { return value == 0; }))
        << "without illumination nothing is seen";
    camera->disableStreaming();
    EXPECT_EQ(read(camera).status, ReadBufferStatus_NOT_STREAMING);
}

TEST_P(DepthNodeTest, ReadsItsSensorsNowAndPeriodically) {
    Started<DepthHost> camera(host.find(NodeType_DEPTH));
    const SensorValueArray now = camera->readTemperatures();
    ASSERT_THAT(now.values, SizeIs(2));
    EXPECT_EQ(now.values[1].sensorId, 1);
    EXPECT_THAT(now.values[0].value, AllOf(Ge(35.0F), Le(60.0F)));
    const auto acceleration =
        makeRefcounted<Core::AccelerometerPeriodicOperation>(Cameras::accelerationRegister, 1, true);
    EXPECT_NEAR(camera->readAccelerometer(acceleration.get()).y, 1.0F, 0.05F);

    const auto temperature =
        makeRefcounted<Core::TemperaturePeriodicOperation>(Cameras::illuminationTemperatureRegister, 1, true);
    camera->configurePeriodicOperations({Utils::SmartPtr<Core::PeriodicOperation>(temperature),
                                         {},
                                         Utils::SmartPtr<Core::PeriodicOperation>(acceleration)});
    camera->enableStreaming(camera->getConfigurations().front());
    const std::size_t before = transfers();
    EXPECT_EQ(read(camera).status, ReadBufferStatus_OK);
    const std::size_t after = transfers();
    EXPECT_GT(after, before) << "the readings were made between two frames";
    const SensorValueArray polled = camera->readTemperatures();
    ASSERT_THAT(polled.values, SizeIs(1)) << "the last reading of the one operation";
    EXPECT_EQ(polled.values[0].sensorId, 1);
    EXPECT_NEAR(camera->readAccelerometer(acceleration.get()).y, 1.0F, 0.05F);
    EXPECT_EQ(transfers(), after) << "without asking the camera";
    EXPECT_TRUE(temperature->timeToPoll(INT64_MAX / 2)) << "none is pending";

    camera->configurePeriodicOperations({});
    EXPECT_THAT(camera->readTemperatures().values, SizeIs(2)) << "what was read is forgotten";
    camera->configurePeriodicOperations({Utils::SmartPtr<Core::PeriodicOperation>(temperature)});
    EXPECT_EQ(read(camera).status, ReadBufferStatus_OK);
    camera->disableStreaming();
    const std::size_t stopped = transfers();
    EXPECT_THAT(camera->readTemperatures().values, SizeIs(2)) << "not those of the stream that ended";
    EXPECT_GT(transfers(), stopped);
}

TEST_P(DepthNodeTest, GivesTheDescriptionsCalibrationWithoutAStorage) {
    plugOne(GetParam(), "flash " + host.path("empty"));
    Utils::writeFile(host.path("empty"), std::string(0x10000, '\xFF'));
    const TestSupport::LogCapture log;
    Started<DepthHost> camera(host.find(NodeType_DEPTH));
    EXPECT_THAT(
        log.warnings(),
        ElementsAre("camera " + camera.event.serialNumber +
                    ": its flash holds no lens model; its lens model is the one in the description of " +
                    GetParam() + ", which was not measured on this camera"));
    EXPECT_EQ(camera->getImageRegistrationCalibration().extrinsics.values.at(0).t1, 25.0F);
    EXPECT_EQ(camera->getTemperatureCalibration(DepthNode::CameraMode_0).values.at(0).value, 36.5F);
    EXPECT_FALSE(camera->getTemperatureCompensation().comesFromRom());
    CyclicErrorCorrection cyclic = camera->getCyclicErrorCorrection();
    ASSERT_TRUE(cyclic.setCurrentMode(DepthNode::CameraMode_1));
    EXPECT_EQ(cyclic.getParameter(1), 1.25F);
    EXPECT_EQ(camera->getSerialNumber(), camera.event.serialNumber);
    int major = -1;
    int minor = -1;
    camera->getVersions(major, minor);
    const std::map<std::string, int> versions{{"ZS570", 0x0102}, {"ZS258", 0x2035}, {"ZS345", 0x2035}};
    EXPECT_EQ(major << 8 | minor, versions.at(GetParam()));
}

/// A storage as a camera's maker writes it.
std::string storageImage() {
    TestSupport::Bytes bytes(0x10000, 0xFF);
    TestSupport::ImageFlash flash(bytes);
    ROM::ChunkedMemoryManager memory(&flash, 0, 0x4000, 256, true);
    ROM::Container container(&memory);
    ROM::ROM rom(&container);
    rom.initialize();
    rom.initializeRom();
    const ROM::IntrinsicsData lens(ROM::IntrinsicsData::Type::Depth, 320, 240, 201, 202, 160, 120, 0.5F, 0, 0,
                                   0, 0);
    const ROM::SystemCalibration calibration({0.25F, -0.5F, 0}, {1, 0, 0, 0, 1, 0, 0, 0, 1, 33, 0, 0}, {lens},
                                             {});
    rom.set(2, &calibration, 1);
    const ROM::Configuration configuration(
        ROM::TemperatureCalibrationData({40.0F, 50.0F}), ROM::PhaseOffset(ROM::PhaseOffset::MARKER, -70),
        ROM::PhaseOffset(ROM::PhaseOffset::MARKER2, 90),
        ROM::TemperatureCompensationData(static_cast<ROM::TemperatureAlgorithmID>(65), {1.5F, -2.0F}),
        ROM::CyclicErrorCorrectionData(static_cast<ROM::CyclicErrorAlgorithmID>(65), {1.5F, -2.0F}));
    rom.set(3, &configuration, 1);
    const ROM::Diagnostic diagnostic(ROM::OverheatingDiagnosticData(7, 2));
    rom.set(4, &diagnostic, 1);
    rom.dispose();
    return {bytes.begin(), bytes.end()};
}

TEST_P(DepthNodeTest, ReadsTheCalibrationInTheCamerasStorage) {
    Utils::writeFile(host.path("flash"), storageImage());
    plugOne(GetParam(), "flash " + host.path("flash"));
    Started<DepthHost> camera(host.find(NodeType_DEPTH));

    const StereoCameraParametersArray lenses = camera->getImageRegistrationCalibration();
    EXPECT_EQ(lenses.depthIntrinsics.values.at(0).fy, 202.0F);
    EXPECT_EQ(lenses.extrinsics.values.at(0).t1, 33.0F);
    EXPECT_THAT(lenses.colorIntrinsics.values, SizeIs(1)) << "the description's, for the storage has none";
    EXPECT_EQ(camera->getAccelerometerCalibration().y, -0.5F);
    EXPECT_EQ(camera->getTemperatureCalibration().modes[1].values.at(1).value, 50.0F);
    EXPECT_EQ(camera->getDiagnosticData(), (DiagnosticData{7, 2}));
    const auto modes = camera->getConfigurations();
    EXPECT_EQ(modes[0]->getCalibration().getPhaseDelay(), -70);
    EXPECT_EQ(modes[0]->getCalibration().getPhaseDelay2(), 90);
    EXPECT_EQ(modes[1]->getCalibration().getPhaseDelay(), 90);

    TemperatureCompensation temperature = camera->getTemperatureCompensation();
    CyclicErrorCorrection cyclic = camera->getCyclicErrorCorrection();
    EXPECT_TRUE(temperature.comesFromRom());
    EXPECT_TRUE(cyclic.comesFromRom());
    for (const auto mode : {DepthNode::CameraMode_0, DepthNode::CameraMode_1}) {
        ASSERT_TRUE(temperature.setCurrentMode(mode));
        ASSERT_TRUE(cyclic.setCurrentMode(mode));
        EXPECT_EQ(temperature.getAlgorithm(), 65);
        EXPECT_EQ(cyclic.getAlgorithm(), 65);
        for (const unsigned index : {0U, 1U})
            EXPECT_EQ(temperature.getParameter(index), cyclic.getParameter(index));
    }

    const std::size_t before = transfers();
    camera->reloadROMLayout(false);
    EXPECT_EQ(transfers(), before) << "it was read already";
    camera->setDiagnosticData({9, 9});
    camera->reloadROMLayout(true);
    EXPECT_GT(transfers(), before);
    EXPECT_EQ(camera->getDiagnosticData(), (DiagnosticData{7, 2}));
}

/// What no image of a storage is, and one of whose records tells a length that it has not.
TEST_P(DepthNodeTest, SurvivesEveryStorage) {
    std::string damaged = storageImage();
    damaged[256 + 40] = '\x7F';
    DepthHost camera(host.find(NodeType_DEPTH));
    for (const std::string& image :
         {damaged, std::string(0x10000, '\0'), std::string(3, 'x'), std::string()}) {
        Utils::writeFile(host.path("flash"), image);
        plugOne(GetParam(), "flash " + host.path("flash"));
        camera.initialize();
        EXPECT_EQ(camera->getConfigurations().front()->getFramerate(), 60);
        EXPECT_EQ(camera->getImageRegistrationCalibration().colorIntrinsics.values.size(), 1U);
    }
    camera->enableStreaming(camera->getConfigurations().front());
    EXPECT_EQ(read(camera).status, ReadBufferStatus_OK);
}

/// The reader's sensor readings and the host's parameters go through one bridge at the same time.
TEST_P(DepthNodeTest, ParametersArriveWholeWhileTheSensorsAreRead) {
    Started<DepthHost> camera(host.find(NodeType_DEPTH));
    const auto temperature =
        makeRefcounted<Core::TemperaturePeriodicOperation>(Cameras::sensorTemperatureRegister, 1, true);
    camera->configurePeriodicOperations({Utils::SmartPtr<Core::PeriodicOperation>(temperature)});
    camera->enableStreaming(camera->getConfigurations().front());
    std::atomic<int> frames = 0;
    std::thread reader([&] {
        while (read(camera).status == ReadBufferStatus_OK)
            ++frames;
    });
    for (unsigned round = 0; frames < 10; ++round) {
        const float megahertz = round % 2 ? 20.0F : 40.0F;
        camera->process(makeRefcounted<IO::setFloatParameterRequest>(ParameterType_FLOAT_2, megahertz));
        EXPECT_NEAR(camera->getRange(), 149.896F / megahertz, 0.001F) << round;
        camera->process(makeRefcounted<IO::UVCCommandRequest>(IO::UVC_TOF_CONTROLLER_REGISTER, 77U, round));
    }
    camera->disableStreaming(); // wakes the reader
    reader.join();
}

TEST_P(DepthNodeTest, WhateverTransferFailsItCanBeDisposedAndInitializedAgain) {
    Utils::writeFile(host.path("flash"), std::string(0x10000, '\xFF'));
    DepthHost camera(host.find(NodeType_DEPTH));
    const auto run = [&](std::size_t fault) {
        plugOne(GetParam(), "flash " + host.path("flash") + "; transfer " + std::to_string(fault) + " fail");
        camera.initialize();
        camera->enableStreaming(camera->getConfigurations().front());
        EXPECT_EQ(read(camera).status, ReadBufferStatus_OK);
        camera->disableStreaming();
    };
    const TestSupport::LogCapture log;
    run(1'000'000);
    const std::size_t needed = transfers();
    ASSERT_GT(needed, 30U);
    std::size_t failed = 0;
    for (std::size_t fault = 1; fault <= needed; ++fault) {
        failed += failure([&] { run(fault); }) != "nothing was thrown";
        if (fault % 2 == 0)
            camera->dispose(); // else the next initialize replaces this one
    }
    EXPECT_GT(failed, 20U) << "a storage that cannot be read is no failure";
    EXPECT_THAT(log.warnings(),
                testing::Contains(HasSubstr("camera " + camera.event.serialNumber +
                                            ": its flash cannot be read (the transfer failed")));
    run(needed + 1);
}

class NodeFailureTest : public NodeTest {};

TEST_F(NodeFailureTest, ACommandThatFailsLeavesTheCameraStopped) {
    plugOne("ZS570");
    Started<DepthHost> camera(host.find(NodeType_DEPTH));
    const auto mode = camera->getConfigurations().front();
    const std::size_t first = transfers() + 1;
    camera->dispose();
    plugOne("ZS570", "transfer " + std::to_string(first + 2) + " fail");
    // The first log is at its end, so the second initialization is counted anew.
    camera.initialize();
    writes();
    refuses("the transfer failed", [&] { camera->enableStreaming(mode); });
    EXPECT_THAT(writes(), ElementsAre(Write{65, 1}, Write{66, 0}, Write{64, 0}, Write{65, 0}))
        << "the third one failed; those for the stop follow, once";
    EXPECT_EQ(read(camera).status, ReadBufferStatus_NOT_STREAMING);
    camera->enableStreaming(mode);
    EXPECT_EQ(read(camera).status, ReadBufferStatus_OK) << "the next start finds all well";
}

TEST_F(NodeFailureTest, AStartThatComesTooLateIsTakenBack) {
    plugOne("ZS570", "refuse cancel; hang 2500 at audio.enableAudio times 1");
    Started<AudioHost> microphones(host.find(NodeType_AUDIO));
    const auto mode = microphones->getDefaultConfiguration();
    EXPECT_THAT(failure([&] { microphones->enableStreaming(mode); }), testing::StartsWith("2: "));
    EXPECT_EQ(read(microphones).status, ReadBufferStatus_NOT_STREAMING);
    microphones->enableStreaming(mode);
    EXPECT_EQ(read(microphones).status, ReadBufferStatus_OK);
}

TEST_F(NodeFailureTest, MissingAndWrongDevicesAreRefused) {
    plugOne("ZS570");
    NodeEvent event = host.find(NodeType_DEPTH);
    DepthHost depth(event);
    depth.event.parentPath = "simulated:gone";
    refuses("no camera is plugged in as 'simulated:gone'", [&] { depth.initialize(); });
    refuses("not initialized", [&] { depth->enableStreaming({}); });
    depth->dispose();
    depth->dispose();
    depth.event = event;
    depth.initialize();

    // The audio node's store names an audio device.
    AudioHost audio(host.find(NodeType_AUDIO));
    refuses("ImplType mismatch", [&] { depth->initialize(&event, &audio.view(), nullptr); });
    refuses("not initialized", [&] { depth->readBuffer(nullptr, 0, nullptr, nullptr); });
    depth.initialize();
    depth->dispose();
}

TEST_F(NodeFailureTest, WrongModesAndRequestsAreRefused) {
    plugOne("ZS345");
    Started<DepthHost> camera(host.find(NodeType_DEPTH));
    const auto vga = makeRefcounted<DepthConfiguration>(FrameFormat_VGA, 60, DepthNode::CameraMode_0, false,
                                                        std::int16_t{0});
    refuses("has no mode DEFF3FR60CM0S0", [&] { camera->enableStreaming(vga); });
    refuses("does not stream", [&] { camera->setConfiguration(camera->getConfigurations()[0]); });
    refuses("null", [&] { camera->process({}); });
    refuses("value out of range", [&] { camera->setIlluminationLevel(DepthNode::CameraMode_0, 101); });
    refuses("null", [&] { static_cast<void>(camera->readTemperature(nullptr)); });
    writes();
    camera->process(makeRefcounted<IO::UVCCommandRequest>(IO::UVC_TOF_CONTROLLER_REGISTER, 77U, 5U));
    camera->setIlluminationLevel(DepthNode::CameraMode_0, 40);
    EXPECT_THAT(writes(), ElementsAre(Write{77, 5}, Write{0x50, 80}));
}

TEST_F(NodeTest, AColorNodeStreamsWithTheSettingsOfTheHost) {
    for (const char* model : {"ZS570", "ZS258", "ZS345"}) {
        plugOne(model);
        Started<ColorHost> camera(host.find(NodeType_COLOR));
        EXPECT_EQ(camera->getCameraControls().values.at(CameraControl_CONTRAST).value, 50);
        camera->setCameraControl(CameraControl_BRIGHTNESS, {30, false});
        const CameraControlValue great{300, false};
        refuses("no control 11", [&] { camera->setCameraControl(CameraControl_ZOOM, great); });
        refuses("takes -64 to 64", [&] { camera->setCameraControl(CameraControl_BRIGHTNESS, great); });
        EXPECT_EQ(camera->getCameraControls().values.at(CameraControl_BRIGHTNESS).value, 30);

        const std::size_t before = transfers();
        camera->enableStreaming(camera->getConfigurations().front());
        EXPECT_GT(transfers(), before) << model << ": its commands were sent";
        const Frame frame = read(camera);
        EXPECT_EQ(frame.status, ReadBufferStatus_OK);
        EXPECT_EQ(frame.length, static_cast<int>(Cameras::colorBytes));
        const std::size_t streaming = transfers();
        camera->disableStreaming();
        EXPECT_GT(transfers(), streaming) << model << ": and those for the stop";
        EXPECT_EQ(read(camera).status, ReadBufferStatus_NOT_STREAMING);
        refuses("has no mode", [&] { camera->enableStreaming(makeRefcounted<ColorConfiguration>()); });
        camera->enableStreaming(camera->getConfigurations().front());
        const std::size_t again = transfers();
        camera->dispose();
        EXPECT_GT(transfers(), again) << model << ": disposing stops";
    }
}

TEST(ColorNode, HasNoControlBeyondTheBits) {
    for (const int control : {-1, 1, 64, 65})
        EXPECT_FALSE(Cameras::isNamed(1, CameraControlsEnum(control))) << control;
    EXPECT_TRUE(Cameras::isNamed(1, CameraControlsEnum(0)));
}

TEST_F(NodeTest, AnAudioNodeStreamsItsDefaultModeAsItsDeviceIsSet) {
    plugOne("ZS570");
    AudioHost microphones(host.find(NodeType_AUDIO));
    refuses("not initialized", [&] { microphones->disableStreaming(); });
    microphones.initialize();
    EXPECT_EQ(microphones->getDefaultConfiguration()->getName(), "AUCH2BPS16SR48000");
    refuses("no mode", [&] { microphones->enableStreaming(makeRefcounted<AudioConfiguration>(1, 8, 8000)); });
    EXPECT_THAT(failure([&] { microphones->setMute(true); }),
                "1: Setting mute is not supported by this device");
    microphones->enableStreaming(microphones->getDefaultConfiguration());
    const auto isSilent = [&] {
        const Frame block = read(microphones);
        EXPECT_EQ(block.length, static_cast<int>(Cameras::audioBlockBytes));
        return std::all_of(block.bytes.begin(), block.bytes.begin() + block.length,
                           [](std::uint8_t byte) { return byte == 0; });
    };
    EXPECT_FALSE(isSilent());
    microphones->getAVDeviceProxy()->setInputMixerLevel(0);
    EXPECT_TRUE(isSilent());
    EXPECT_THAT(failure([&] { microphones->getAVDeviceProxy()->setInputMixerLevel(1.5F); }),
                testing::StartsWith("3: "));
    microphones->getAVDeviceProxy()->setInputMixerLevel(1);
    microphones->getAVDeviceProxy()->setMute(true);
    EXPECT_TRUE(isSilent());
    microphones->disableStreaming();
    EXPECT_EQ(read(microphones).status, ReadBufferStatus_NOT_STREAMING);
    microphones->enableStreaming(microphones->getDefaultConfiguration());
    EXPECT_FALSE(isSilent()) << "each start begins anew";
}

/// What is known of a device that no description names: the plug-in that drives it; and of one that measures depth
/// itself its unit and mode.
class DeviceAlone final : public Core::DescriptorStoreRO, public Core::DescriptorDetails {
public:
    explicit DeviceAlone(GUID implementation, std::uint32_t micrometres = 0)
        : device(implementation), unit(micrometres) {}
    [[nodiscard]] GUID getDeviceImplGUID() const override { return device; }
    [[nodiscard]] const Core::DeviceDescriptor* getDeviceDescriptor() const override { return nullptr; }
    [[nodiscard]] const Core::NodeDescriptor* getNodeDescriptor() const override {
        return node ? &*node : nullptr;
    }
    [[nodiscard]] std::string getControllerName() const override { return {}; }
    [[nodiscard]] std::uint32_t getDepthUnit() const override { return unit; }
    [[nodiscard]] Core::DepthAlong getDepthAlong() const override { return Core::DepthAlong::Axis; }
    [[nodiscard]] std::vector<Utils::SmartPtr<DepthBaseConfiguration>>
    getDepthConfigurations() const override {
        return {Utils::SmartPtr<DepthBaseConfiguration>(
            makeRefcounted<DepthConfiguration>(format, 60, DepthNode::CameraMode_0, false, std::int16_t{0}))};
    }

    FrameFormat format = FrameFormat_QVGA;
    std::optional<Core::NodeDescriptor> node;

private:
    const GUID device;
    const std::uint32_t unit;
};

template<typename Interface>
struct UndescribedNode {
    explicit UndescribedNode(GUID guid) : node(TestSupport::makePlugin<Interface>(guid)) {}
    ~UndescribedNode() { node->dispose(); }
    void initialize(DeviceAlone& store) { node->initialize(&event, &store, nullptr); }
    Interface* operator->() { return node.get(); }

    NodeEvent event;
    Utils::SmartPtr<Interface> node;
};

TEST(UndescribedDevices, StreamColorAndSoundAsTheyReportIt) {
    DeviceAlone video(Core::Guids::MOCKVIDEODEVICE_IMPL);
    UndescribedNode<Core::ColorNodeInterface> color(Core::Guids::GENERICCOLOR_IMPL);
    color.initialize(video);
    const auto modes = color->getConfigurations();
    ASSERT_THAT(modes, SizeIs(1));
    EXPECT_THAT(color->getCameraControlRanges().ranges, SizeIs(4)) << "all that the device has";
    color->setCameraControl(CameraControl_EXPOSURE, {200, false});
    color->enableStreaming(modes[0]);
    EXPECT_EQ(read(color).length, static_cast<int>(Cameras::colorBytes));

    DeviceAlone sound(Core::Guids::MOCKAUDIODEVICE_IMPL);
    UndescribedNode<Core::AudioNodeInterface> audio(Core::Guids::GENERICAUDIO_IMPL);
    audio.initialize(sound);
    ASSERT_THAT(audio->getConfigurations(), SizeIs(1));
    EXPECT_EQ(audio->getDefaultConfiguration()->getSampleRate(), Cameras::audioSampleRate);
    audio->enableStreaming(audio->getDefaultConfiguration());
    EXPECT_EQ(read(audio).length, static_cast<int>(Cameras::audioBlockBytes));

    DeviceAlone nothing(Core::Guids::NULL_IMPL);
    refuses("couldn't find GUID NULL_IMPL", [&] { color.initialize(nothing); });
    UndescribedNode<Core::DepthNodeInterface> depth(Cameras::depthNodeGuid);
    refuses("tells no controller", [&] { depth.initialize(video); });
    using Core::NodeDescriptor;
    for (const auto list : {&NodeDescriptor::preCommonSettings, &NodeDescriptor::postCommonSettings,
                            &NodeDescriptor::stopCommonSettings}) {
        video.node = NodeDescriptor();
        (*video.node).*list = {makeRefcounted<IO::UVCCommandRequest>()};
        refuses("tells no controller", [&] { color.initialize(video); });
    }
}

TEST(Z16Node, TellsMillimetresWhateverTheUnit) {
    for (const std::uint32_t unit : {1000U, 250U, 40'000U}) {
        DeviceAlone store(Core::Guids::MOCKVIDEODEVICE_IMPL, unit);
        UndescribedNode<Core::DepthNodeInterface> camera(Cameras::z16DepthNodeGuid);
        camera.initialize(store);
        camera->enableStreaming(camera->getConfigurations().front());
        const Frame frame = read(camera);
        ASSERT_EQ(frame.status, ReadBufferStatus_OK);
        ASSERT_EQ(frame.length, static_cast<int>(Cameras::depthFrameBytes));
        const auto depth = frame.plane(Cameras::depthOffset);
        const auto confidence = frame.plane(Cameras::confidenceOffset);
        std::size_t seen = 0;
        for (std::size_t i = 0; i < depth.size(); ++i) {
            ASSERT_EQ(depth[i] == 0, confidence[i] == 0) << i;
            if (depth[i] != 0) {
                ASSERT_THAT(depth[i] * 1000.0 / unit, AllOf(Ge(590), Le(2710))) << "the scene, in steps";
                ++seen;
            }
        }
        EXPECT_GT(seen, depth.size() / 5);
        EXPECT_EQ(seen < depth.size() / 2, unit == 40'000) << "beyond 65,535 mm is no depth";
        camera->disableStreaming();
        EXPECT_EQ(read(camera).status, ReadBufferStatus_NOT_STREAMING);
    }
}

TEST(Z16Node, RefusesWhatItCannotTellInMillimetres) {
    UndescribedNode<Core::DepthNodeInterface> camera(Cameras::z16DepthNodeGuid);
    DeviceAlone store(Core::Guids::MOCKVIDEODEVICE_IMPL);
    refuses("has no depthUnit", [&] { camera.initialize(store); });
    DeviceAlone sizeless(Core::Guids::MOCKVIDEODEVICE_IMPL, 1000);
    sizeless.format = FrameFormat_DEFAULT;
    refuses("no mode of a known size", [&] { camera.initialize(sizeless); });
    DeviceAlone vga(Core::Guids::MOCKVIDEODEVICE_IMPL, 1000);
    vga.format = FrameFormat_VGA;
    camera.initialize(vga);
    refuses("QVGA", [&] { camera->enableStreaming(camera->getConfigurations().front()); });
    refuses("null", [&] { camera->enableStreaming({}); });
    camera->dispose();
    EXPECT_FALSE(camera->getAVDeviceProxy());
}

} // namespace
} // namespace Zentara
