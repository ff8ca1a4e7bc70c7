#include <zentara/io/base_rom_layout.h>

#include <gmock/gmock.h>

#include <zentara/depth_configuration.h>
#include <zentara/io/calibration_data.h>
#include <zentara/plugin/plugin_exceptions.h>

#include "core/nodes/record_store.h"

namespace Testing {
namespace {

using IO::BaseROMLayout;
using IO::CalibrationData;
using testing::ElementsAre;

constexpr auto mode0 = DepthNode::CameraMode_0;
constexpr auto mode1 = DepthNode::CameraMode_1;

Utils::SmartPtr<DepthBaseConfiguration> depthMode(int frameRate, DepthNode::CameraMode mode) {
    return Utils::makeRefcounted<DepthConfiguration>(FrameFormat_QVGA, frameRate, mode, false,
                                                     std::int16_t{0});
}

/// The delays for 25, 30, 50 and 60 frames per second in mode 0, then in mode 1.
std::vector<short> delays(const CalibrationData& data) {
    std::vector<short> all;
    for (const auto mode : {mode0, mode1}) {
        for (const int frameRate : {25, 30, 50, 60})
            all.push_back(data.getPhaseDelay(depthMode(frameRate, mode)));
    }
    return all;
}

class OtherConfiguration final : public DepthBaseConfiguration {
public:
    OtherConfiguration()
        : DepthBaseConfiguration(FrameFormat_QVGA, 25, 0, "other", ConfigurationType_DEPTH) {}
};

TEST(CalibrationData, TableHasOneDelayForEachRateAndMode) {
    EXPECT_THAT(delays(CalibrationData(-1, 2)), ElementsAre(-1, -1, -1, -1, 2, 2, 2, 2));
    const std::pair<std::vector<short>, std::vector<short>> rows[]{
        {{}, {0, 0, 0, 0, 0, 0, 0, 0}},
        {{1, 2}, {1, 2, 0, 0, 1, 2, 0, 0}},
        {{1, 2, 3, 4}, {1, 2, 3, 4, 1, 2, 3, 4}},
        {{1, 2, 3, 4, 5, 6, 7}, {1, 2, 3, 4, 1, 2, 3, 4}},
        {{1, 2, 3, 4, 5, 6, 7, 8}, {1, 2, 3, 4, 5, 6, 7, 8}},
        {{1, 2, 3, 4, 5, 6, 7, 8, 9}, {1, 2, 3, 4, 1, 2, 3, 4}},
    };
    for (const auto& [values, table] : rows)
        EXPECT_EQ(delays(CalibrationData(values)), table) << values.size() << " values";
    const Utils::SmartPtr<DepthBaseConfiguration> withoutElement[] = {
        depthMode(15, mode0), depthMode(25, DepthNode::CameraMode_NONE), nullptr,
        Utils::makeRefcounted<OtherConfiguration>()};
    for (const auto& configuration : withoutElement)
        EXPECT_EQ(CalibrationData(5, 5).getPhaseDelay(configuration), 0);
}

/// Begins every answer; whether it has one is told by the result or an exception.
class TemperatureStore final : public RecordStore {
public:
    enum Answer { Yes, No, Throws };
    explicit TemperatureStore(Answer given) : answer(given) {}

    bool getTemperatureCalibration(DepthNode::CameraMode mode, SensorValueArray& values) const override {
        values = {{{mode, 20.0F + static_cast<float>(mode)}}};
        return tell();
    }
    bool getTemperatureCompensation(float& coefficient, int& sensorId) const override {
        coefficient = 1.5F;
        sensorId = 7;
        return tell();
    }

private:
    bool tell() const {
        if (answer == Throws)
            throw Plugin::NotSupportedPluginException("no answer");
        return answer == Yes;
    }

    const Answer answer;
};

std::vector<bool> flags(const BaseROMLayout& layout) {
    return {layout.hasPhaseDelay(),
            layout.hasAccelerometerCalibration(),
            layout.hasImageRegistrationCalibration(),
            layout.hasSerialNumber(),
            layout.hasProductionID(),
            layout.hasTemperatureCalibration()};
}

TEST(BaseROMLayout, WithoutAnAnswerOfTheStoreKeepsItsDefaults) {
    RecordStore silent;
    TemperatureStore negative(TemperatureStore::No);
    TemperatureStore throwing(TemperatureStore::Throws);
    for (Core::DescriptorStoreRO* store :
         std::initializer_list<Core::DescriptorStoreRO*>{nullptr, &silent, &negative, &throwing}) {
        const BaseROMLayout layout(store);
        EXPECT_THAT(flags(layout), ElementsAre(false, false, false, false, false, false));
        EXPECT_EQ(layout.getTemperatureCalibration(), TemperatureCalibration());
        EXPECT_FALSE(layout.getTemperatureCompensation().setCurrentMode(mode0));
        // Each list of the image registration counts 1 while it is empty.
        const StereoCameraParametersArray stereo = layout.getImageRegistrationCalibration();
        EXPECT_TRUE(stereo.empty());
        EXPECT_THAT((std::vector{stereo.depthIntrinsics.count, stereo.colorIntrinsics.count,
                                 stereo.extrinsics.count}),
                    ElementsAre(1, 1, 1));
    }
}

TEST(BaseROMLayout, ReadsTheTemperaturesOfTheStore) {
    TemperatureStore store(TemperatureStore::Yes);
    BaseROMLayout layout(&store);
    layout.setDiagnosticData({1, 2});
    EXPECT_THAT(flags(layout), ElementsAre(false, false, false, false, false, true));
    EXPECT_EQ(layout.getTemperatureCalibration(mode1).values.at(0), (SensorValue{1, 21.0F}));
    EXPECT_TRUE(layout.getTemperatureCalibration(DepthNode::CameraMode_NONE).empty());
    TemperatureCompensation compensation = layout.getTemperatureCompensation();
    for (const auto mode : {mode0, mode1}) { // one coefficient serves both
        EXPECT_TRUE(compensation.setCurrentMode(mode));
        EXPECT_EQ(compensation.getParameter(0), 1.5F);
        EXPECT_EQ(compensation.getSensorID(0), 7);
    }
    EXPECT_EQ(layout.getDiagnosticData(), DiagnosticData()) << "setting it does nothing in this class";
}

class FilledLayout final : public BaseROMLayout {
public:
    explicit FilledLayout(short delay) : BaseROMLayout(nullptr) {
        setPhaseDelays(CalibrationData(delay, delay));
        setAccelerometerCalibration({0, 1, 0});
        setImageRegistrationCalibration({{2, {}}, {}, {}});
        setTemperatureCalibration({});
        setSerialNumber("S" + std::to_string(delay));
        setProductionID("P");
        storeDiagnosticData({3, 4});
    }
};

TEST(BaseROMLayout, SubclassFillsItAndCopiesAreIndependent) {
    const FilledLayout first(11);
    BaseROMLayout copy(first);
    EXPECT_THAT(flags(copy), ElementsAre(true, true, true, true, true, true));
    EXPECT_EQ(copy.getDiagnosticData(), (DiagnosticData{3, 4}));
    EXPECT_EQ(copy.getImageRegistrationCalibration().depthIntrinsics.count, 2U);
    copy = FilledLayout(22);
    EXPECT_EQ(copy.getPhaseDelay(depthMode(60, mode1)), 22);
    EXPECT_EQ(copy.getSerialNumber(), "S22");
    EXPECT_EQ(first.getPhaseDelay(depthMode(60, mode1)), 11);
    EXPECT_EQ(first.getSerialNumber(), "S11");
}

} // namespace
} // namespace Testing
