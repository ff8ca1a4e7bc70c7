#include "plugins/descriptions/camera_description.h"

#include <gmock/gmock.h>

#include "support/failure.h"
#include "tests/plugins/descriptions/shipped.h"

namespace Zentara {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using TestSupport::shipped;

std::string complaint(const std::string& text) {
    return TestSupport::messageOf<Plugin::ConfigurationPluginException>(
        [&] { (void)Cameras::readDescription(text, "camera.json"); });
}

TEST(CameraDescription, IsRefusedWithFileLineAndFieldOfWhatIsWrong) {
    const std::tuple<const char*, const char*, const char*, const char*> rows[]{
        {"twice", "\"vendorName\"", "\"model\"", "line 4: 'model' stands there twice"},
        {"unknown field", "\"flags\": 1,\n    \"hardwareVersion\"", "\"flag\": 1,\n    \"hardwareVersion\"",
         "line 12, flag: there is no such field"},
        {"missing field", "\"model\": \"ZS570\",", "", "line 1, the whole: the field 'model' is missing"},
        {"too great", "\"0xFFFE\"", "\"0x1FFFFFFFF\"", "line 7, vendorId: must be a whole number"},
        {"controller", "\"controller\": \"OV0570\"", "\"controller\": \"OV0571\"",
         "line 10, controller: 'OV0571' is none of OV0570 VC0258 VC0345"},
        {"GUID", "MOCKDEPTH_IMPL", "MOCKDEAF_IMPL",
         "nodes[0].implementation: 'MOCKDEAF_IMPL' is neither a well-known name nor a GUID"},
        {"rotation", "[1, 0, 0, 0, 1, 0, 0, 0, 1]", "[1, 0, 0]",
         "nodes[0].extrinsics.rotation: must have 9 numbers, not 3"},
        {"two elements", "{ \"id\": 1, ", "{ \"id\": 1, \"address\": 0, \"size\": 0 }, { \"id\": 1, ",
         "nodes[0].romElements[1].id: stands there twice"},
        {"same interface", "\"interfaceNumber\": 1", "\"interfaceNumber\": 0",
         "nodes[1]: interface 0 belongs to another node"},
        {"audio has no extension unit", "\"modes\": [\n                { \"channels\"",
         "\"preCommon\": [],\n            \"modes\": [\n                { \"channels\"",
         "nodes[2].preCommon: there is no such field"},
        {"no object", "\"nodes\": [", "\"nodes\": [7, ", "nodes[0]: must be an object"},
        {"frame format", "\"QVGA\"", "\"HUGE\"", "nodes[0].modes[0].frameFormat: 'HUGE' is none of"},
        {"no number", "\"fx\": 252.5", "\"fx\": 1e99", "depthIntrinsics[0].fx: is too great"},
        {"no number at all", "\"fx\": 252.5", "\"fx\": 1e999",
         "line 70, nodes[0].depthIntrinsics[0].fx: number overflow"},
        {"past the memory", "\"address\": 0, \"size\": \"0x4000\"", "\"address\": 1, \"size\": \"0x10000\"",
         "nodes[0].romElements[0].size: must be a whole number from 0 to 65535"},
        {"same mode", "\"frameRate\": 60, \"cameraMode\": 1", "\"frameRate\": 60, \"cameraMode\": 0",
         "nodes[0].modes[1]: the mode DEFF2FR60CM0S0 stands there twice"},
    };
    for (const auto& [what, from, to, expected] : rows)
        EXPECT_THAT(complaint(TestSupport::changed(shipped("ov0570"), from, to)),
                    testing::AllOf(StartsWith("camera.json, line "), HasSubstr(expected)))
            << what;
}

TEST(CameraDescription, HostileTextsAreRefused) {
    EXPECT_THAT(complaint(""), StartsWith("camera.json, line 1"));
    EXPECT_THAT(complaint(std::string(1 << 20, '[')), HasSubstr("nested deeper than 32"));
    EXPECT_THAT(complaint("{\"model\": \"\xFF\"}"), HasSubstr("line 1: "));
    std::string crowd = "{\"0\": 0";
    for (int i = 1; i < 200'000; ++i)
        crowd += ", \"" + std::to_string(i) + "\": 0";
    EXPECT_THAT(complaint(crowd + "}"), HasSubstr("more than 1024 members"));
}

} // namespace
} // namespace Zentara
