#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <zentara/host/failure.h>
#include <zentara/host/flash_content.h>
#include <zentara/rom/configuration.h>
#include <zentara/rom/gradient_distortion_correction.h>
#include <zentara/rom/section.h>
#include <zentara/rom/system_calibration.h>
#include <zentara/rom/system_info.h>

#include "host/flash/records.h"
#include "support/failure.h"

namespace Zentara::Host {
namespace {

using testing::HasSubstr;

FlashSection sectionOf(const ROM::Object& object) {
    return {static_cast<std::uint8_t>(object.getType()), ROM::Section::FLAG_WRITABLE, object.serialize()};
}

/// Through the text, as a file holds it.
FlashContent passedOn(const FlashContent& content) { return contentFromJson(toJson(content), "a text"); }

TEST(ContentJson, NamesTheFieldsThatTheLibraryWrites) {
    const ROM::SystemInfo info(ROM::SystemInfoData({0x12345678, 0x9ABC, 0xDEF0, {1, 2, 3, 4, 5, 6, 7, 8}}),
                               {3, 4});
    const ROM::IntrinsicsData lens(ROM::IntrinsicsData::Type::Color, 640, 480, 1, 2, 3, 4, 5, 6, 7, 8, 9);
    const ROM::SystemCalibration calibration({1, 2, 3}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, {}, {lens});
    const ROM::Configuration configuration(ROM::TemperatureCalibrationData({0.1F}),
                                           {ROM::PhaseOffset::MARKER, -5}, {ROM::PhaseOffset::MARKER2, 7},
                                           {ROM::TemperatureAlgorithmID{2}, {1, -2.5F}},
                                           {ROM::CyclicErrorAlgorithmID{3}, {}});
    const ROM::GradientDistortionCorrection correction({1, 2, 3, "SN\"7"}, {{30, {1, 0xFE}}});
    const std::pair<const ROM::Object&, const char*> rows[]{
        {info, R"([{"record":"systemInfo","guid":"12345678-9abc-def0-0102-030405060708"},
                   {"record":"hardwareInfo","qvgaDepthType":3,"lensType":4}])"},
        {calibration,
         R"([{"record":"colorIntrinsics","width":640,"height":480,"fx":1.0,"fy":2.0,"cx":3.0,"cy":4.0,
                           "k1":5.0,"k2":6.0,"p1":7.0,"p2":8.0,"k3":9.0},
                          {"record":"extrinsics","rotation":[1.0,2.0,3.0,4.0,5.0,6.0,7.0,8.0,9.0],
                           "translation":[10.0,11.0,12.0]},
                          {"record":"accelerometer","x":1.0,"y":2.0,"z":3.0}])"},
        {configuration, R"([{"record":"temperatureCalibration","values":[0.1]},
                            {"record":"phaseOffset","offset":-5},{"record":"phaseOffset2","offset":7},
                            {"record":"temperatureCompensation","algorithm":2,"values":[1.0,-2.5]},
                            {"record":"cyclicErrorCorrection","algorithm":3,"values":[]}])"},
        {correction, R"([{"record":"correctionHeader","versionNumber":1,"timeOfLastWrite":2,"numberOfSets":3,
                          "serialId":"SN\"7"},
                         {"record":"correctionTable","modulationFrequency":30,"values":"01fe"}])"},
    };
    for (const auto& [object, records] : rows) {
        const FlashSection section = sectionOf(object);
        EXPECT_EQ(nlohmann::ordered_json::parse(toJson(9, section))["records"].dump(),
                  nlohmann::ordered_json::parse(records).dump());
        EXPECT_EQ(passedOn({{9, section}}), (FlashContent{{9, section}}));
    }
}

TEST(ContentJson, KeepsWhatFieldsCannotSayAsHexadecimalDigits) {
    const std::tuple<const char*, std::uint8_t, const char*, const char*> rows[]{
        {"an unknown section type", 77, "01ff", R"("data":"01ff")"},
        {"an unknown marker", 4, "6301070000005a", R"({"marker":99,"version":1,"data":"5a"})"},
        {"a version to come", 3, "4002080000000102", R"({"marker":64,"version":2,"data":"0102"})"},
        {"a marker of another section", 1, "4001080000000102", R"({"marker":64,"version":1,"data":"0102"})"},
        {"too few bytes", 4, "20010700000005", R"({"marker":32,"version":1,"data":"05"})"},
        {"surplus bytes", 4, "2001090000000506ff", R"({"marker":32,"version":1,"data":"0506ff"})"},
        {"no number", 3, "22010b000000017fc00001", R"({"marker":34,"version":1,"data":"017fc00001"})"},
        {"a text that is none", 5,
         "440110000000000100000002030"
         "2ff00",
         R"("data":"000100000002030)"},
        {"a count past the end", 3, "220107000000ff", R"({"marker":34,"version":1,"data":"ff"})"},
        {"an end that is no record", 4,
         "2001080000000506"
         "20",
         R"("trailing":"20")"},
        {"nothing", 4, "", R"("records":[])"},
    };
    for (const auto& [what, type, data, json] : rows) {
        SCOPED_TRACE(what);
        const FlashSection section{type, 0, fromHex(data).value()};
        EXPECT_THAT(nlohmann::ordered_json::parse(toJson(1, section)).dump(), HasSubstr(json));
        EXPECT_EQ(passedOn({{1, section}}), (FlashContent{{1, section}}));
    }
}

TEST(ContentJson, NamesTheFieldThatIsWrong) {
    const std::string content = R"({"schema":1,"kind":"rom content","sections":[)";
    const std::string before = content + R"({"uid":4,"type":"diagnostic","flags":1,"records":[)";
    const std::pair<std::string, const char*> rows[]{
        {R"({"schema":2,"kind":"rom content","sections":[]})",
         "/schema: expected a whole number from 1 to 1"},
        {R"({"schema":1,"kind":"soup","sections":[]})", "/kind: expected \"rom content\""},
        {before + R"({"record":"overheating","softCounter":1},{"marker":1,"version":1,"marker":2}]}]})",
         "/sections/0/records/1/marker: the field \"marker\" stands twice"},
        {R"({"schema":1,"kind":"rom content","sections":[],"more":1})", "/more: no such field"},
        {content + R"({"uid":0}]})", "/sections/0/uid: expected a whole number from 1 to 65535"},
        {content + R"({"uid":1,"type":"soup"}]})", "/sections/0/type: no such"},
        {content + R"({"uid":1,"type":9,"flags":1,"data":"0"}]})", "/sections/0/data: expected pairs"},
        {content + R"({"uid":1,"type":9,"flags":1,"data":"","records":[]}]})",
         "/sections/0/records: no such field"},
        {content + R"({"uid":1,"type":9,"flags":1,"data":""},
            {"uid":1,"type":9,"flags":1,"data":""}]})",
         "/sections/1/uid: the uid stands twice"},
        {before + R"({"record":"systemInfo","guid":""}]}]})",
         "/records/0/record: no such record in a section of type diagnostic"},
        {content + R"({"uid":1,"type":1,"flags":1,"records":[
            {"record":"systemInfo","guid":"12345678-9abc-def0-0102-03040506070g"}]}]})",
         "/guid: expected a GUID"},
        {content + R"({"uid":2,"type":2,"flags":1,"records":[
            {"record":"extrinsics","rotation":[1,2],"translation":[1,2,3]}]}]})",
         "/rotation: expected 9 numbers"},
        {content + R"({"uid":2,"type":2,"flags":1,"records":[
            {"record":"accelerometer","x":1e99,"y":0,"z":0}]}]})",
         "/x: the number does not fit"},
        {content + R"({"uid":5,"type":5,"flags":1,"records":[{"record":"correctionHeader",
            "versionNumber":1,"timeOfLastWrite":2,"numberOfSets":3,"serialId":")" +
             std::string(255, 'x') + "\"}]}]}",
         "/serialId: expected a text of at most 254"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.first);
        EXPECT_THAT(
            TestSupport::messageOf<Failure>([&] { static_cast<void>(contentFromJson(row.first, "a.json")); }),
            HasSubstr(row.second));
    }
}

} // namespace
} // namespace Zentara::Host
