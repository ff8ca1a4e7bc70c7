#include <gmock/gmock.h>

#include <zentara/host/camera_files.h>
#include <zentara/host/failure.h>
#include <zentara/utils/files.h>

#include "support/failure.h"
#include "support/temporary_directory.h"

namespace Zentara::Host {
namespace {

using testing::HasSubstr;

class CameraFiles : public testing::Test {
protected:
    /// What reading such a file ends with.
    std::string refusal(bool isCalibration, const std::string& text) {
        Utils::writeFile(path, text);
        return TestSupport::messageOf<Failure>([&] {
            if (isCalibration)
                static_cast<void>(readCalibrationFile(path));
            else
                static_cast<void>(readParameterFile(path));
        });
    }

    const TestSupport::TemporaryDirectory directory;
    const std::string path = directory.path("w.json");
};

TEST_F(CameraFiles, AreWrittenAndReadWithoutLoss) {
    CameraInfo camera;
    camera.serial = "LEFT";
    camera.name = "a\xFF";
    const ParameterValues values{
        {0, 0.1F}, {4, 8}, {7, false}, {13, RegionOfInterestInternal{16, 8, 256, 200}}};
    writeOutputFile(path, parameterDocument(camera, values));
    const StoredParameters read = readParameterFile(path);
    EXPECT_EQ(read.serialNumber, "LEFT");
    EXPECT_EQ(read.values, values);
    for (const float value : {1.0F / 3, 36.0625F, 3.4028235e38F, -0.0F, 16777216.0F})
        EXPECT_EQ(std::get<float>(parameterValue(0, toJson(ParameterValue(value)))), value);
    EXPECT_EQ(toJson(ParameterValue(std::stof("nan"))), "\"nan\"\n");
    const std::vector<ParameterChange> changes = changesBetween(values, {{0, 0.1F}, {7, true}, {9, 1}});
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_EQ(changes[0].before, ParameterValue(false));
    EXPECT_FALSE(changes[1].before);

    CalibrationInternal calibration;
    calibration.setPhaseDelay(-321);
    calibration.setTemperatureCompensation({2, {1, -2}, {3, 4}});
    writeOutputFile(path, calibrationDocument({}, calibration));
    EXPECT_EQ(readCalibrationFile(path).calibration, calibration);
    EXPECT_EQ(readCalibrationFile(path).serialNumber, "");
    EXPECT_EQ(changesBetween(calibration, CalibrationInternal()).front().text(), "phaseDelay: -321 -> 0");
}

TEST_F(CameraFiles, AreRefusedAtThePlaceThatIsWrong) {
    const std::pair<std::string, const char*> parameters[]{
        {"", "' is no JSON: parse error at line 1, column 1"},
        {"[]", "': /: expected an object"},
        {"{}", "': /schema: is missing"},
        {R"({"schema":1,"values":[]})", "': /values: expected an object"},
        {R"({"schema":9,"values":{}})", "': /schema: this program reads schemas 1 to 3, not 9"},
        {R"({"schema":1,"values":{"0":1,"0":2}})", "the field \"0\" stands twice"},
        {R"({"schema":1,"values":{"0":"x"}})", "': /values/0: parameter 0 takes a number, not \"x\""},
        {R"({"schema":1,"values":{"99":1}})", "': /values/99: '99' is no parameter"},
        {R"({"schema":1,"values":{"13":{"x":1}}})",
         "': /values/13: parameter 13 takes x, y, width and height"},
        {R"({"schema":1,"values":{"0":)" + std::string(100'000, '['),
         "more than 64 values stand one in the other"},
        {std::string(20'000'000, ' '), "it has more than 16777216 bytes"},
    };
    for (const auto& [text, message] : parameters)
        EXPECT_THAT(refusal(false, text), HasSubstr(message));

    const auto file = [](const char* delays, const char* kind, const char* first, const char* second) {
        return std::string(R"({"schema":1,"calibration":{)") + delays +
               R"(,"temperatureCompensation":{"kind":)" + kind + R"(,"firstCoefficients":[)" + first +
               R"(],"secondCoefficients":[)" + second + "]}}}";
    };
    const char* delays = R"("phaseDelay":1,"phaseDelay2":0)";
    const std::pair<std::string, const char*> calibrations[]{
        {file(R"("phaseDelay":40000,"phaseDelay2":0)", "0", "", ""),
         "': /calibration/phaseDelay: expected a whole number from -32768 to 32767, not 40000"},
        {file(R"("phaseDelay":1.5,"phaseDelay2":0)", "0", "", ""), "phaseDelay: expected a whole number"},
        {file(R"("phaseDelay":1)", "0", "", ""), "': /calibration/phaseDelay2: is missing"},
        {file(delays, "300", "", ""), "Compensation/kind: expected a whole number from 0 to 255"},
        {file(delays, "1", "1", ""), "secondCoefficients: has 0 numbers and firstCoefficients 1"},
        {file(delays, "0", "1", "1"), "': /calibration/temperatureCompensation/kind: is 0"},
        {file(R"("phaseDelay":1,"extra":1,"phaseDelay2":0)", "0", "", ""), "/extra: no such field"},
    };
    for (const auto& [text, message] : calibrations)
        EXPECT_THAT(refusal(true, text), HasSubstr(message)) << text;
}

} // namespace
} // namespace Zentara::Host
