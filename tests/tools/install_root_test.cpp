#include <filesystem>
#include <string>

#include <zentara/core/plugin_probe.h>
#include <zentara/utils/files.h>

#include "support/program.h"
#include "support/scoped_variable.h"
#include "support/simulated_faults.h"
#include "tools/tool_fixture.h"

namespace Zentara::Tool {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

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

    void remove(const std::string& plugin) {
        for (const auto& entry : std::filesystem::directory_iterator(at("bin/Plugins"))) {
            if (entry.path().stem() == plugin)
                std::filesystem::remove(entry.path());
        }
    }

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

TEST_F(OwnRoot, TakesSeveralPluginsOfOneKindTogether) {
    const std::string ending = std::string(".") + Core::pluginFileExtension();
    copyMisbehaving("none", "a_bus" + ending);
    copyMisbehaving("initialize throw", "b_bus" + ending);
    copyMisbehaving("none", "a_store" + ending, "misbehaving_store");
    copyMisbehaving("initialize throw", "b_store" + ending, "misbehaving_store");
    const ToolRun devices = run({"devices", "--json"});
    EXPECT_EQ(devices.exitCode, 0) << devices.err;
    EXPECT_EQ(devices.json().at("cameras").size(), 3U);
    EXPECT_EQ(devices.json().at("cameras").at(0).at("controller"), "OV0570");
    EXPECT_THAT(devices.json().at("enumerator").get<std::string>(), HasSubstr("an empty bus, "));
    EXPECT_THAT(devices.err, AllOf(HasSubstr("cannot look for cameras through 00000001-0006"),
                                   HasSubstr("cannot read the descriptions of cameras through 00000001-0008"),
                                   HasSubstr("it is left out")));
    EXPECT_EQ(run({"info"}).exitCode, 0);
    EXPECT_THAT(run({"devices", "--watch", "--seconds", "0.5"}).out, HasSubstr("SIM0345"));

    // A second video device: the first four bytes of its GUID are others, wherever they stand.
    std::string bytes = Utils::readFile(path("bin/Plugins/simulated_video_device" + ending));
    const std::string known = "\xC6\x3F\xE2\x39";
    for (std::size_t at = bytes.find(known); at != std::string::npos; at = bytes.find(known, at))
        bytes[at + 3] = 1;
    Utils::writeFile(path("bin/Plugins/other" + ending), bytes);
    const std::string other = "01E23FC6-E54A-4CD0-9FB4-67C1781E2C5B";
    const std::pair<std::string, std::string> rows[]{
        {"", other},
        {other, other},
        {"{" + other + "}", other},
        {"other" + ending, other},
        {"simulated_video_device", "MOCKVIDEODEVICE_IMPL"},
        {path("bin/Plugins/simulated_video_device" + ending), "MOCKVIDEODEVICE_IMPL"},
        {"mockvideodevice_impl", "MOCKVIDEODEVICE_IMPL"}};
    for (const auto& [name, taken] : rows) {
        std::vector<std::string> words{"stream", "--direct", "--frames", "1", "--json"};
        if (!name.empty())
            words.insert(words.end(), {"--plugin", name});
        const ToolRun stream = run(words);
        ASSERT_EQ(stream.exitCode, 0) << stream.err;
        EXPECT_THAT(stream.out, HasSubstr(taken)) << name;
        EXPECT_EQ(stream.err.find("are registered; taking") != std::string::npos, name.empty()) << stream.err;
    }
    const ToolRun wrong = run({"reg", "read", "tof", "0x21", "--direct", "--plugin", "simulated_enumerator"});
    EXPECT_EQ(wrong.exitCode, 2);
    EXPECT_THAT(wrong.err, AllOf(HasSubstr("no video device plug-in is called 'simulated_enumerator'"),
                                 HasSubstr("(simulated_video_device" + ending + ")")));
    EXPECT_EQ(run({"reg", "read", "tof", "0x21", "--plugin", "other"}).exitCode, 2) << "without --direct";
}

TEST_F(OwnRoot, EndsWhenAPluginDoesNotComeBack) {
    const std::string ending = std::string(".") + Core::pluginFileExtension();
    const struct {
        const char* behaviour; ///< of an enumerator
        const char* faults;    ///< of the devices
        std::vector<std::string> words;
        const char* said;
    } rows[]{
        {"load hang", "", {"devices"}, "cannot look for plug-ins: "},
        {"create hang", "", {"devices"}, "cannot look for cameras through 00000001-0006"},
        {"initialize hang", "", {"info"}, "cannot look for cameras through 00000001-0006"},
        {"enumerate hang", "", {"stream"}, "cannot look for cameras through 00000001-0006"},
        {"dispose hang", "", {"info"}, "cannot close the enumerator 00000001-0006"},
        {"", "hang 60000 at video.dispose", {"stream", "--frames", "3", "--raw", "whole"}, "cannot close "},
        {"", "hang 60000 at video.open", {"stream", "--direct"}, "cannot open MOCKVIDEODEVICE_IMPL: "},
        {"",
         "hang 60000 at video.recv",
         {"reg", "read", "tof", "1", "--direct"},
         ": GET unit 6, control 1: "},
    };
    for (const auto& row : rows) {
        if (*row.behaviour != '\0')
            copyMisbehaving(row.behaviour, "hanging" + ending);
        const TestSupport::ScopedVariable faults("ZENTARA_SIMULATED", row.faults);
        std::vector<std::string> words{"--patience", "1"};
        words.insert(words.end(), row.words.begin(), row.words.end());
        if (words.back() == "whole")
            words.back() = path("whole");
        const ToolRun run = OwnRoot::run(words);
        EXPECT_EQ(run.exitCode, 7) << row.said << run.err;
        EXPECT_THAT(run.err, AllOf(HasSubstr(row.said), HasSubstr("it has not come back for 1 s")))
            << run.err;
        remove("hanging");
    }
    EXPECT_EQ(std::filesystem::file_size(at("whole")), 3U * 460'800U) << "what had come is whole";
}

TEST_F(OwnRoot, NamesWhatIsMissing) {
    for (const char* real :
         {"usb_enumerator", "generic_descriptions", "v4l2_video_device", "alsa_audio_device"})
        remove(real);
    describe({{"format", 1}});
    EXPECT_THAT(run({"devices"}).out, AllOf(HasSubstr("SIM0570"), Not(HasSubstr("OTHER"))));
    std::filesystem::remove_all(at("cameras"));
    for (const char* verb : {"devices", "info", "stream"}) {
        const ToolRun run = OwnRoot::run({verb});
        EXPECT_EQ(run.exitCode, 3) << verb;
        EXPECT_THAT(run.err, HasSubstr("no camera is plugged in")) << verb;
    }
    remove("simulated_enumerator");
    EXPECT_EQ(run({"reg", "read", "tof", "1"}).exitCode, 4);
    EXPECT_EQ(run({"reg", "read", "tof", "1", "--direct"}).exitCode, 0);
    remove("descriptor_store");
    const ToolRun blind = run({"devices"});
    EXPECT_EQ(blind.exitCode, 4);
    EXPECT_THAT(blind.err, HasSubstr("no descriptor store plug-in is registered"));
    remove("simulated_video_device");
    EXPECT_EQ(run({"reg", "read", "tof", "1", "--direct"}).exitCode, 4);
}

} // namespace
} // namespace Zentara::Tool
