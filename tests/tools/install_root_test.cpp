#include <filesystem>
#include <string>

#include <zentara/utils/files.h>

#include "support/program.h"
#include "support/simulated_faults.h"
#include "tools/tool_fixture.h"

namespace Zentara::Tool {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

/// Runs the built tool in an install root of the test's own: a copy of the built one, without what the test takes out.
/// This process may hold on to the plug-ins that other tests have used.
class OwnRoot : public ToolTest {
protected:
    OwnRoot() {
        copy("bin/Plugins");
        copy("cameras");
        std::filesystem::copy(build() / "test-roots" / "tools" / "bin" / "Plugins", at("bin/Plugins"));
    }

    [[nodiscard]] std::filesystem::path at(const std::string& name) const {
        return TestSupport::TemporaryDirectory::fromUtf8(path(name));
    }

    /// The description of the VC0345's camera, to be changed and written by another name.
    static json description() {
        json text = json::parse(Utils::readFile((build() / "cameras" / "vc0345.json").string()));
        text["model"] = "OTHER";
        text["serialNumber"] = "OTHER";
        text["productId"] = 7;
        return text;
    }
    void describe(const json& camera) { Utils::writeFile(path("cameras/other.json"), camera.dump()); }

    ToolRun run(const std::vector<std::string>& arguments) const {
        std::string words;
        for (const std::string& argument : arguments)
            words += "\"" + argument + "\" ";
        return runBuilt(words);
    }
    ToolRun other(std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"--camera", "OTHER"});
        return run(arguments);
    }

private:
    static std::filesystem::path build() { return Tests::programDirectory().parent_path(); }

    void copy(const std::string& name) const {
        std::filesystem::create_directories(at(name));
        std::filesystem::copy(build() / name, at(name));
    }

    InstallRoot root{path()};
};

TEST_F(OwnRoot, TellsOfCamerasThatLackSomething) {
    json camera = description();
    camera["nodes"][0].erase("parameters");
    camera["nodes"][0]["parameterInterpreter"] = "B1B1C96D-2C5A-4B1F-905E-2B431D7C1104";
    describe(camera);
    const json parameters = other({"params", "list", "--json"}).json().at("parameters");
    ASSERT_EQ(parameters.size(), 16U);
    for (const json& row : parameters) {
        EXPECT_EQ(row.at("supported"), row.at("parameter") == 0) << row;
        EXPECT_EQ(row.at("value").is_null(), row.at("parameter") != 0) << row;
        EXPECT_TRUE(row.at("range").is_null()) << row;
    }
    EXPECT_THAT(other({"params", "list"}).out, AllOf(HasSubstr("float   read-write  80"),
                                                     HasSubstr("float   not supported by this camera")));
    EXPECT_THAT(other({"params", "set", "1=1"}).err, HasSubstr("the camera has no such parameter"));

    camera["nodes"][0].erase("parameterInterpreter");
    camera["nodes"][0].update({{"depthAlong", "ray"},
                               {"depthUnit", 1000},
                               {"implementation", "0D6A4B91-2F5E-4C07-9E61-3BD87215AC40"}});
    camera["nodes"][0]["modes"][1]["phaseDelay"] = 40; // of the mode that is not the first
    describe(camera);
    const ToolRun plain = other({"info", "--json"});
    EXPECT_EQ(plain.exitCode, 0) << plain.err;
    for (const char* lacking : {"calibration", "rangeMeters", "firmware"})
        EXPECT_TRUE(plain.json().at(lacking).contains("notSupported")) << lacking;
    EXPECT_EQ(plain.json().at("corrections")[1].at("phaseDelay"), 40);
    EXPECT_EQ(plain.json().at("source").at("lens"), "description");
    EXPECT_THAT(other({"info"}).out, HasSubstr("depth values    units of 1 mm, along the pixel's ray"));
    EXPECT_THAT(other({"params", "list"}).err, HasSubstr("camera OTHER has no parameters"));

    camera["nodes"].erase(0);
    camera["nodes"].erase(1);
    describe(camera);
    const ToolRun colorOnly = other({"info", "--json"});
    EXPECT_EQ(colorOnly.exitCode, 0) << colorOnly.err;
    EXPECT_EQ(colorOnly.json().at("nodes").size(), 1U);
    EXPECT_EQ(colorOnly.json().at("camera").at("controller"), "VC0345");
    EXPECT_NE(other({"sensors"}).exitCode, 0);
    const ToolRun streamed = other({"stream", "--color", "--audio", "--frames", "2"});
    EXPECT_EQ(streamed.exitCode, 1);
    EXPECT_THAT(streamed.err,
                AllOf(HasSubstr("camera OTHER has no depth stream"), HasSubstr("there is no audio stream")));
    EXPECT_THAT(other({"reg", "read", "tof", "0x21"}).out, HasSubstr("0x2035"))
        << "through the colour device";

    camera["nodes"][0]["device"] = "77A1E001-1111-4222-8333-444455556602";
    describe(camera);
    EXPECT_EQ(other({"info"}).exitCode, 3) << "a camera of another device is not simulated";
}

TEST_F(OwnRoot, FormatsTheStorageWhereTheDescriptionPutsIt) {
    json camera = description();
    camera["nodes"][0]["romElements"] = {{{"id", 1}, {"address", 0x8000}, {"size", 0x2000}}};
    describe(camera);
    const std::string kept = path("kept.flash");
    const TestSupport::SimulatedFaults settings("keepFlash " + kept);
    EXPECT_EQ(other({"rom", "info"}).exitCode, 8) << "there is no storage yet";
    const std::string before = Utils::readFile(kept);
    const ToolRun made = other({"rom", "create", "--yes", "--backup", path("backup")});
    ASSERT_EQ(made.exitCode, 0) << made.err;
    const std::string after = Utils::readFile(kept);
    EXPECT_EQ(after.substr(0, 0x8000), before.substr(0, 0x8000));
    EXPECT_EQ(after.substr(0xA000), before.substr(0xA000));
    EXPECT_EQ(Utils::readFile(path("backup")), before.substr(0x8000, 0x2000));
    EXPECT_EQ(other({"rom", "list"}).exitCode, 0);
    EXPECT_THAT(other({"rom", "list", "--controller", "OV0570"}).err, HasSubstr("OTHER"))
        << "what the user names overrules the description";

    camera["nodes"][0].erase("romElements");
    describe(camera);
    const ToolRun refused = other({"rom", "create", "--yes", "--backup", path("second")});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_THAT(refused.err, HasSubstr("no description says where the camera's storage lies"));
    EXPECT_EQ(Utils::readFile(kept), after);
}

} // namespace
} // namespace Zentara::Tool
