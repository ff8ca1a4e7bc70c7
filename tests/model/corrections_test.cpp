#include <zentara/cyclic_error_correction.h>
#include <zentara/temperature_compensation.h>

#include <gmock/gmock.h>

#include "support/log_capture.h"

namespace Zentara {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Bytes = std::vector<unsigned char>;

constexpr auto none = DepthNode::CameraMode_NONE;
constexpr auto mode0 = DepthNode::CameraMode_0;
constexpr auto mode1 = DepthNode::CameraMode_1;
constexpr auto unknownMode = static_cast<DepthNode::CameraMode>(2);

/// Algorithm 65 with the parameters 1 and -2.5, as a camera's ROM stores it.
const Bytes stored = {65, 2, 0x3F, 0x80, 0, 0, 0xC0, 0x20, 0, 0};

Bytes join(const std::vector<Bytes>& parts) {
    Bytes all;
    for (const Bytes& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

template<typename Correction>
std::vector<float> parameters(Correction& correction, DepthNode::CameraMode mode) {
    EXPECT_TRUE(correction.setCurrentMode(mode));
    std::vector<float> values;
    for (unsigned int i = 0; i < correction.getParameterCount(); ++i)
        values.push_back(correction.getParameter(i));
    return values;
}

TemperatureCompensation compensation(const Bytes& bytes) {
    return TemperatureCompensation(static_cast<unsigned int>(bytes.size()), bytes.data());
}

/// How many modes it has.
int modesOf(TemperatureCompensation object) {
    return object.setCurrentMode(mode1) ? 2 : object.setCurrentMode(mode0) ? 1 : 0;
}

class Corrections : public testing::Test {
protected:
    TestSupport::LogCapture log;
};

TEST_F(Corrections, NewTemperatureCompensationAnswersNothing) {
    TemperatureCompensation object;
    EXPECT_EQ(object.getAlgorithm(), 0);
    EXPECT_EQ(object.getParameterCount(), 0U);
    EXPECT_EQ(object.getParameter(0), 0.0F);
    EXPECT_EQ(object.getSensorIDCount(), 0U);
    EXPECT_EQ(object.getSensorID(0), -1);
    EXPECT_FALSE(object.setCurrentMode(mode0));
    EXPECT_THAT(log.warnings(),
                ElementsAre("TemperatureCompensation: cannot get algorithm: current mode is not valid",
                            "TemperatureCompensation: cannot get parameter count: current mode is not valid",
                            "TemperatureCompensation: cannot get parameter: current mode is not valid",
                            "TemperatureCompensation: cannot get sensor ID count: current mode is not valid",
                            "TemperatureCompensation: cannot get sensor ID: current mode is not valid",
                            "TemperatureCompensation: cannot set current mode: unsupported camera mode"));
}

TEST_F(Corrections, TemperatureCompensationReadsTheRangesOfTheRom) {
    TemperatureCompensation object = compensation(join({stored, {3, 0}, stored}));
    EXPECT_TRUE(object.comesFromRom());
    EXPECT_EQ(object.getCurrentMode(), none);
    EXPECT_THAT(parameters(object, mode0), ElementsAre(1.0F, -2.5F));
    EXPECT_EQ(object.getAlgorithm(), 65);
    EXPECT_EQ(object.getSensorIDCount(), 0U);
    EXPECT_THAT(parameters(object, mode1), IsEmpty());
    EXPECT_EQ(object.getAlgorithm(), 3);
    EXPECT_THAT(log.infos(),
                ElementsAre("temperature compensation data loaded from ROM", "- range 0: algorithm = 65",
                            "* parameter[0] = 1", "* parameter[1] = -2.5", "- range 1: algorithm = 3"));
    EXPECT_THAT(log.warnings(), IsEmpty());
}

TEST_F(Corrections, CutRangesOfTheRomAreDropped) {
    const Bytes two = join({stored, stored});
    for (std::size_t size = 0; size <= two.size(); ++size) {
        const Bytes cut(two.begin(), two.begin() + static_cast<std::ptrdiff_t>(size));
        const std::size_t warned = log.warnings().size();
        const TemperatureCompensation object = compensation(cut);
        EXPECT_EQ(log.warnings().size() - warned, size % stored.size() == 0 ? 0U : 1U) << size << " bytes";
        EXPECT_EQ(modesOf(object), static_cast<int>(size / stored.size())) << size << " bytes";
        EXPECT_EQ(object.comesFromRom(), size >= stored.size()) << size << " bytes";
        EXPECT_EQ(cyclicErrorBlock(static_cast<unsigned int>(size), cut.data()).empty(),
                  size < stored.size());
    }
    EXPECT_EQ(modesOf(TemperatureCompensation(static_cast<const void*>(two.data()))), 1) << "without a size";
    EXPECT_EQ(modesOf(TemperatureCompensation(5, nullptr)), 0);
    EXPECT_EQ(modesOf(TemperatureCompensation(static_cast<const void*>(nullptr))), 0);
    EXPECT_THAT(cyclicErrorBlock(10, nullptr), IsEmpty());
}

TEST_F(Corrections, ModesOutsideTheRecordsAreRefused) {
    TemperatureCompensation object = compensation(stored);
    EXPECT_TRUE(object.setCurrentMode(mode0));
    EXPECT_FALSE(object.setCurrentMode(mode1));
    EXPECT_FALSE(object.setCurrentMode(unknownMode));
    EXPECT_EQ(object.getCurrentMode(), mode0);
    std::vector<int> ids = {1};
    EXPECT_FALSE(object.setSensorIDs(unknownMode, std::move(ids)));
    EXPECT_THAT(ids, IsEmpty()) << "taken also when they are refused";
    EXPECT_FALSE(object.setSensorIDs(mode1, {1}));
    EXPECT_EQ(object.getParameter(2), 0.0F);
    EXPECT_EQ(object.getSensorID(0), -1);
    EXPECT_TRUE(object.setCurrentMode(none));
    EXPECT_EQ(object.getCurrentMode(), none);
    EXPECT_THAT(log.warnings(),
                ElementsAre("TemperatureCompensation: cannot set current mode: unsupported camera mode",
                            "TemperatureCompensation: cannot set current mode: unsupported camera mode",
                            "TemperatureCompensation: cannot set sensor IDs: unknown camera mode",
                            "TemperatureCompensation: cannot set sensor IDs: unsupported camera mode",
                            "TemperatureCompensation: parameter index out of range",
                            "TemperatureCompensation: sensor ID index out of range"));
}

TEST_F(Corrections, NewCyclicErrorCorrectionAnswersNothing) {
    CyclicErrorCorrection object;
    EXPECT_EQ(object.getAlgorithm(), 0);
    object.setAlgorithm(CorrectionAlgorithm(1));
    EXPECT_EQ(object.getParameterCount(), 0U);
    EXPECT_EQ(object.getParameter(0), 0.0F);
    object.setParameter(0, 1);
    EXPECT_FALSE(object.setCurrentMode(unknownMode));
    EXPECT_FALSE(CyclicErrorCorrection(static_cast<const void*>(nullptr)).comesFromRom());
    EXPECT_THAT(log.warnings(),
                ElementsAre("CyclicErrorCorrection::getAlgorithm: current mode is not valid",
                            "CyclicErrorCorrection::setAlgorithm: current mode is not valid",
                            "CyclicErrorCorrection::getParameterCount: current mode is not valid",
                            "CyclicErrorCorrection::getParameter: current mode is not valid",
                            "CyclicErrorCorrection::setParameter: current mode is not valid",
                            "CyclicErrorCorrection::setCurrentMode: unknown camera mode"));
}

TEST_F(Corrections, CyclicErrorCorrectionReadsTheBlockOfBothModes) {
    // Bytes 2 and 5 are not read; the algorithm is logged before it is loaded, so as 0.
    const Bytes block =
        join({{3, 5, 0xEE, 2, 1, 0xEE}, {0, 0, 0x80, 0x3F}, {0, 0, 0x20, 0xC0}, {0, 0, 0x40, 0x40}});
    CyclicErrorCorrection object(static_cast<const void*>(block.data()));
    EXPECT_TRUE(object.comesFromRom());
    EXPECT_THAT(parameters(object, mode0), ElementsAre(1.0F, -2.5F));
    EXPECT_EQ(object.getAlgorithm(), 3);
    EXPECT_THAT(parameters(object, mode1), ElementsAre(3.0F));
    EXPECT_FALSE(object.setCurrentMode(unknownMode));
    EXPECT_EQ(object.getAlgorithm(), 5) << "the mode is still the one before";
    EXPECT_THAT(log.infos(),
                ElementsAre("Loading Cyclic Error Correction from the ROM:", " - range 0: algorithm = 0",
                            "   * parameter[0] = 1", "   * parameter[1] = -2.5", " - range 1: algorithm = 0",
                            "   * parameter[0] = 3"));
}

TEST_F(Corrections, ParametersOfACyclicErrorCorrectionAreReplacedNeverAdded) {
    const Bytes block = cyclicErrorBlock(static_cast<unsigned int>(stored.size()), stored.data());
    CyclicErrorCorrection object(static_cast<const void*>(block.data()));
    EXPECT_TRUE(object.setCurrentMode(mode1));
    object.setParameter(1, 9.0F);
    object.setParameter(2, 9.0F);
    EXPECT_EQ(object.getParameter(5), 0.0F);
    object.setAlgorithm(CorrectionAlgorithm_NONE);
    EXPECT_EQ(object.getAlgorithm(), 0);
    EXPECT_THAT(parameters(object, mode1), ElementsAre(1.0F, 9.0F));
    EXPECT_THAT(parameters(object, mode0), ElementsAre(1.0F, -2.5F));
    EXPECT_THAT(log.warnings(),
                ElementsAre("CyclicErrorCorrection::setParameter: parameter index out of range",
                            "CyclicErrorCorrection::getParameter: parameter index out of range"));
}

} // namespace
} // namespace Zentara
