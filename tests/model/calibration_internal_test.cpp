#include <gmock/gmock.h>

#include <zentara/calibration_internal.h>
#include <zentara/plugin/plugin_exceptions.h>

namespace Testing {
namespace {

using namespace Zentara;
using testing::ElementsAreArray;
using Bytes = std::vector<unsigned char>;

/// Phase delays -1 and 0x1234, and compensation 0x105 with the sets (1, -2) and (0x01020304, 5).
const Bytes golden{
    0x40, 1, 6,  0, 0xFF, 0xFF,                                                 // phase delay
    0x41, 1, 6,  0, 0x34, 0x12,                                                 // phase delay 2
    0x22, 1, 16, 0, 2,    0xFF, 0xFF, 0xFF, 1, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, // first coefficients
    0x42, 1, 16, 0, 5,    2,    0xFF, 0xFF, 4, 3, 2, 1, 5,    0,    0,    0,    // second coefficients
};

CalibrationInternal example() {
    CalibrationInternal calibration(0, DriftCompensation(3, 4));
    calibration.setPhaseOffset(7);
    calibration.setPhaseDelay(-1);
    calibration.setPhaseDelay2(0x1234);
    calibration.setTemperatureCompensation({0x105, {1, -2}, {0x01020304, 5}});
    return calibration;
}

Bytes marshalled(const CalibrationInternal& calibration) {
    unsigned int size = 0;
    const int status = calibration.marshal(nullptr, &size);
    EXPECT_EQ(-1, status);
    Bytes bytes(size);
    unsigned char none = 0;
    EXPECT_EQ(0, calibration.marshal(bytes.empty() ? &none : bytes.data(), &size));
    EXPECT_EQ(bytes.size(), size);
    return bytes;
}

int unmarshal(CalibrationInternal& calibration, const Bytes& bytes) {
    // On the heap and of the exact size, so that reading past the end is found out.
    const auto copy = std::make_unique<unsigned char[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), copy.get());
    return calibration.unmarshal(copy.get(), static_cast<unsigned int>(bytes.size()));
}

TEST(CalibrationInternalTest, MarshalsToTheseBytes) {
    EXPECT_EQ(CalibrationInternal(0, DriftCompensation(-1, 0)), CalibrationInternal());
    EXPECT_TRUE(marshalled(CalibrationInternal()).empty());
    EXPECT_THAT(marshalled(example()), ElementsAreArray(golden));
}

TEST(CalibrationInternalTest, ASmallBufferIsLeftAlone) {
    Bytes bytes(golden.size(), 0xAA);
    auto size = static_cast<unsigned int>(golden.size() - 1);
    EXPECT_EQ(-1, example().marshal(bytes.data(), &size));
    EXPECT_EQ(golden.size(), size);
    EXPECT_EQ(Bytes(golden.size(), 0xAA), bytes);
    EXPECT_EQ(-1, example().marshal(bytes.data(), nullptr));
    // A larger one is fine, and its size is not touched.
    bytes.resize(golden.size() + 1);
    size = static_cast<unsigned int>(bytes.size());
    EXPECT_EQ(0, example().marshal(bytes.data(), &size));
    EXPECT_EQ(bytes.size(), size);
}

TEST(CalibrationInternalTest, UnmarshalsWhatHasARecord) {
    CalibrationInternal calibration(9, DriftCompensation(1, 2));
    ASSERT_EQ(0, unmarshal(calibration, golden));
    EXPECT_EQ(9, calibration.getPhaseOffset());
    EXPECT_EQ(-1, calibration.getPhaseDelay());
    EXPECT_EQ(0x1234, calibration.getPhaseDelay2());
    // Of the kind, the low byte travels.
    EXPECT_EQ((TemperatureCompensationData{5, {1, -2}, {0x01020304, 5}}),
              calibration.getTemperatureCompensation());
    EXPECT_EQ(DriftCompensation(1, 2), calibration.getDriftCompensation());
    const CalibrationInternal before = calibration;
    EXPECT_EQ(0, unmarshal(calibration, {}));
    EXPECT_EQ(-1, calibration.unmarshal(nullptr, 4));
    EXPECT_EQ(before, calibration);
}

TEST(CalibrationInternalTest, SkipsOtherVersionsUnknownTagsAndWhatFollowsInARecord) {
    CalibrationInternal calibration;
    ASSERT_EQ(0, unmarshal(calibration, {0x40, 2, 6, 0, 9, 9, 0x40, 0, 6,    0, 9, 9,
                                         0x41, 1, 8, 0, 5, 0, 9,    9, 0x77, 1, 4, 0}));
    EXPECT_EQ(0, calibration.getPhaseDelay());
    EXPECT_EQ(5, calibration.getPhaseDelay2());
}

TEST(CalibrationInternalTest, AShortSetIsPaddedWithZeros) {
    CalibrationInternal calibration;
    // Two second coefficients and no first ones.
    ASSERT_EQ(0, unmarshal(calibration, {0x42, 1, 16, 0, 5, 2, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0}));
    EXPECT_THAT(marshalled(calibration),
                ElementsAreArray(Bytes{0x22, 1, 16, 0, 2, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0,
                                       0x42, 1, 16, 0, 5, 2,    0xFF, 0xFF, 1, 0, 0, 0, 2, 0, 0, 0}));
    EXPECT_EQ((TemperatureCompensationData{5, {0, 0}, {1, 2}}), calibration.getTemperatureCompensation());
    calibration = example(); // three first ones, and two second
    ASSERT_EQ(0, unmarshal(calibration, {0x22, 1, 20, 0, 3, 0, 0, 0, 7, 0, 0, 0, 8, 0, 0, 0, 9, 0, 0, 0}));
    const TemperatureCompensationData padded{0x105, {7, 8, 9}, {0x01020304, 5, 0}};
    EXPECT_EQ(padded, calibration.getTemperatureCompensation());
    calibration.setTemperatureCompensation(padded);
    EXPECT_EQ(padded, calibration.getTemperatureCompensation());
}

TEST(CalibrationInternalTest, LiesAndEveryTruncationAreRefusedAndChangeNothing) {
    CalibrationInternal lied;
    EXPECT_EQ(-1, unmarshal(lied, {0x40, 1, 3, 0, 9, 9})) << "a record shorter than its header";
    EXPECT_EQ(-1, unmarshal(lied, {0x40, 1, 4, 0})) << "no room for the value";
    EXPECT_EQ(0, unmarshal(lied, {0x22, 1, 8, 0, 0, 0, 0, 0})) << "a set of none";
    EXPECT_EQ(-1, unmarshal(lied, {0x22, 1, 12, 0, 2, 0, 0, 0, 1, 0, 0, 0})) << "two claimed, one there";
    // Cuts between records leave a shorter form that is whole.
    const std::size_t whole[] = {0, 6, 12, 28, golden.size()};
    for (std::size_t length = 0; length <= golden.size(); ++length) {
        CalibrationInternal calibration(9, DriftCompensation(1, 2));
        const CalibrationInternal before = calibration;
        const bool fits = std::count(std::begin(whole), std::end(whole), length) != 0;
        EXPECT_EQ(fits ? 0 : -1, unmarshal(calibration, Bytes(golden.begin(), golden.begin() + length)))
            << length;
        if (!fits) {
            EXPECT_EQ(before, calibration) << length;
        }
    }
}

TEST(CalibrationInternalTest, CoefficientSetsAreChecked) {
    CalibrationInternal calibration = example();
    const CalibrationInternal before = calibration;
    EXPECT_THROW(calibration.setTemperatureCompensation({1, {1}, {1, 2}}), Plugin::ArgumentPluginException);
    const std::vector<std::int32_t> many(256);
    EXPECT_THROW(calibration.setTemperatureCompensation({1, many, many}), Plugin::ArgumentPluginException);
    EXPECT_EQ(before, calibration);
    const std::vector<std::int32_t> most(255, 3);
    calibration.setTemperatureCompensation({1, most, most});
    CalibrationInternal back;
    ASSERT_EQ(0, unmarshal(back, marshalled(calibration)));
    EXPECT_EQ(most, back.getTemperatureCompensation().firstCoefficients);
}

} // namespace
} // namespace Testing
