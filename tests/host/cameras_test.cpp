#include <thread>

#include <gmock/gmock.h>

#include <zentara/host/host.h>

#include "support/camera_bus.h"
#include "support/failure.h"
#include "support/scoped_variable.h"

namespace Zentara::Host {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using TestSupport::failureOf;

constexpr const char* left = R"({"model": "ZS570", "serialNumber": "LEFT"})";
constexpr const char* right = R"({"model": "ZS345", "serialNumber": "RIGHT"})";

/// Cameras of the test's own on the simulated bus.
class SomeCameras : public testing::Test, protected TestSupport::CameraBus {
protected:
    std::vector<std::string> notes;
    Cameras::Options options{10s, [this](const std::string& text) { notes.push_back(text); }};
};

TEST_F(SomeCameras, AreListedOpenedByNameAndWatched) {
    plug(std::string(left) + "," + right);
    Cameras cameras(options);
    const std::vector<CameraInfo> all = cameras.list();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[1].serial, "RIGHT");
    EXPECT_EQ(all[1].controller, "VC0345");
    EXPECT_THAT(all[1].kinds, ElementsAre(Kind::Depth, Kind::Color, Kind::Audio));
    EXPECT_EQ(all[1].label(), "Simulated camera with VC0345 RIGHT");
    EXPECT_EQ(cameras.open().info(), all[0]);
    for (const char* name : {"vc0345", "zs345", "simulated:RIGHT"})
        EXPECT_EQ(cameras.open(name).info(), all[1]) << name;
    EXPECT_EQ(cameras.open(all[1]).info(), all[1]);
    EXPECT_EQ(cameras.choose({"LEFT", "simulated"}).size(), 2U);
    EXPECT_EQ(failureOf([&] { static_cast<void>(cameras.open("simulated")); }).code(), Failure::Usage);
    EXPECT_EQ(failureOf([&] { static_cast<void>(cameras.openToWrite("")); }).code(), Failure::Usage);
    const Failure nobody = failureOf([&] { static_cast<void>(cameras.open("MIDDLE")); });
    EXPECT_EQ(nobody.code(), Failure::NoDevice);
    EXPECT_STREQ(nobody.what(), "no camera is called 'MIDDLE'; plugged in: LEFT, RIGHT");

    cameras.watch();
    for (int node = 0; node < 6; ++node)
        EXPECT_EQ(cameras.next(10s).value().type, CameraEvent::Type::Arrived);
    plug(right);
    const CameraEvent gone = cameras.next(10s).value();
    EXPECT_EQ(gone.type, CameraEvent::Type::Removed);
    EXPECT_EQ(gone.camera.serial, "LEFT");
    EXPECT_EQ(gone.camera.nodes.size(), 1U);
    plug("");
    EXPECT_EQ(failureOf([&] { static_cast<void>(cameras.open()); }).code(), Failure::NoDevice);
    EXPECT_THAT(notes, IsEmpty());
}

TEST_F(SomeCameras, TellWhatBelongsToTheirFrames) {
    plug(left);
    const Camera camera = Cameras(options).open(); // it outlives what it was found by
    const std::vector<Mode> modes = camera.modes(Kind::Depth);
    ASSERT_FALSE(modes.empty());
    EXPECT_EQ(camera.mode(Kind::Depth), modes.front());
    EXPECT_EQ(camera.mode(Kind::Depth, "320x240@60").text(), "320x240@60");
    EXPECT_THAT(failureOf([&] { static_cast<void>(camera.mode(Kind::Depth, "1x1")); }).what(),
                testing::AllOf(HasSubstr("has no mode 1x1; it has "), HasSubstr("(320x240@60)")));

    const StreamInfo info = camera.streamInfo(Kind::Depth);
    EXPECT_EQ(info.camera, camera.info());
    EXPECT_EQ(info.depthAlong, DepthAlong::Axis);
    ASSERT_TRUE(info.lens && info.pose);
    EXPECT_EQ(info.lens->width, info.mode.width);
    EXPECT_EQ(camera.lens().model(), *info.lens);
    EXPECT_EQ(info.lensSource, Source::Camera);
    EXPECT_EQ(info.corrections, camera.corrections());
    EXPECT_FALSE(info.corrections.modes[0].temperatureParameters.empty());
    EXPECT_EQ(camera.appliedCalibration().value().getPhaseDelay(), info.corrections.phaseDelay);
    EXPECT_EQ(camera.sources().corrections, info.correctionsSource);
    EXPECT_EQ(camera.streamInfo(Kind::Color).pose, info.pose);
    EXPECT_FALSE(camera.streamInfo(Kind::Audio).lens);

    const CameraDescription told = camera.description();
    ASSERT_EQ(told.nodes.size(), 3U);
    EXPECT_EQ(told.nodes[0].nodePlugin.name, "MOCKDEPTH_IMPL");
    EXPECT_EQ(told.nodes[0].modes, modes);
    EXPECT_GT(camera.rangeMetres(), 0.0F);
    EXPECT_EQ(camera.storedSerialNumber(), "LEFT");
}

TEST_F(SomeCameras, HaveParametersSensorsAndAChip) {
    plug(left);
    const Camera camera = Cameras(options).open();
    EXPECT_EQ(camera.parameters().size(), 16U);
    const Parameter first = camera.parameter(0);
    EXPECT_TRUE(first.isSupported && first.isReadable && first.isWritable);
    ASSERT_EQ(first.ranges.size(), 1U);
    camera.setParameter(0, 42.5F);
    EXPECT_EQ(camera.parameter("0").value, ParameterValue(42.5F));
    camera.setParameter(13, RegionOfInterestInternal{16, 8, 256, 200});
    EXPECT_EQ(valueText(camera.parameterValues().at(13)), "16,8,256,200");
    camera.setParameters({{0, 12.5F}, {7, false}});
    EXPECT_EQ(camera.parameter(7).value, ParameterValue(false));
    EXPECT_THAT(failureOf([&] { camera.setParameter(0, 1e9F); }).what(), HasSubstr("out of range: "));
    EXPECT_THAT(failureOf([&] { camera.setParameter(0, true); }).what(), HasSubstr("of the kind float"));

    ASSERT_FALSE(camera.temperatures().empty());
    EXPECT_GT(camera.temperatures().front().celsius, 0.0F);
    EXPECT_NEAR(camera.accelerometer().value().value.y, 1, 0.5);

    CalibrationInternal calibration = camera.readCalibration();
    calibration.setPhaseDelay(-321);
    camera.writeCalibration(calibration);
    EXPECT_EQ(camera.readCalibration().getPhaseDelay(), -321);

    std::vector<IO::ChipTransfer> transfers;
    camera.watchTransfers([&](const IO::ChipTransfer& transfer) { transfers.push_back(transfer); });
    IO::CameraChip& chip = camera.chip();
    EXPECT_STREQ(chip.name(), "OV0570");
    static_cast<void>(chip.read(IO::CameraChip::Target::Tof, 0x21));
    EXPECT_FALSE(transfers.empty());

    Flash flash = camera.flash();
    camera.close();
    camera.close();
    EXPECT_THROW(static_cast<void>(flash.load()), Failure) << "its device is closed";
    EXPECT_THROW(static_cast<void>(chip.read(IO::CameraChip::Target::Tof, 0x21)), Plugin::PluginException);
    EXPECT_EQ(failureOf([&] { static_cast<void>(camera.temperatures()); }).code(), Failure::Usage);
    EXPECT_THAT(notes, IsEmpty());
}

TEST_F(SomeCameras, FailWithinTheirLimitAndSayWhy) {
    plug(left);
    options.limit = 1s;
    Cameras cameras(options);
    {
        const Camera camera = cameras.open();
        EXPECT_FALSE(camera.temperatures().empty());
        plug(right);
        const auto ask = [&] { return failureOf([&] { static_cast<void>(camera.temperatures()); }); };
        Failure gone = ask();
        for (int tries = 0; tries < 200 && gone.code() == Failure::None; ++tries, gone = ask())
            std::this_thread::sleep_for(50ms); // until the device sees it
        EXPECT_EQ(gone.code(), Failure::NoDevice);
        EXPECT_THAT(gone.what(), HasSubstr("; camera LEFT is not plugged in any more"));
    }
    const TestSupport::ScopedVariable hangs("ZENTARA_SIMULATED", "hang 20000 at video.initialize");
    auto start = std::chrono::steady_clock::now();
    {
        const Camera camera = cameras.open();
        const Failure late = failureOf([&] { static_cast<void>(camera.temperatures()); });
        EXPECT_EQ(late.code(), Failure::TimedOut);
        EXPECT_STREQ(late.what(),
                     "cannot open ZS345 depth RIGHT through MOCKDEPTH_IMPL: it has not come back for 1 s");
        EXPECT_EQ(failureOf([&] { static_cast<void>(camera.modes(Kind::Depth)); }).code(), Failure::TimedOut);
        start = std::chrono::steady_clock::now();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, 4s);
    EXPECT_THAT(notes, ElementsAre(HasSubstr("RIGHT is left behind with its thread: it is still to open ")));
}

} // namespace
} // namespace Zentara::Host
