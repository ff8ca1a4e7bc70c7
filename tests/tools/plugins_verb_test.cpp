#include <filesystem>
#include <map>
#include <string>

#include <zentara/core/plugin_probe.h>
#include <zentara/utils/files.h>

#include "support/program.h"
#include "tools/tool_fixture.h"

namespace Zentara::Tool {
namespace {

using testing::HasSubstr;
using TestSupport::TemporaryDirectory;

class PluginsVerb : public ToolTest {
protected:
    /// A root of the test's own.
    void makePluginDirectory() const {
        std::filesystem::create_directories(TemporaryDirectory::fromUtf8(path("bin/Plugins")));
    }

    void addFile(const std::string& name, const std::string& contents) const {
        Utils::writeFile(path("bin/Plugins/" + name), contents);
    }

    /// A copy of a built plug-in under another name.
    void addCopy(const std::string& plugin, const std::string& name) const {
        const auto built = Tests::programDirectory() / "Plugins" / (plugin + ending());
        std::filesystem::copy_file(built, TemporaryDirectory::fromUtf8(path("bin/Plugins/" + name)));
    }

    static std::string ending() { return std::string(".") + Core::pluginFileExtension(); }

    /// What `plugins --all` says of each refused file, by its name.
    static std::map<std::string, nlohmann::json> refusedOf(const nlohmann::json& listing) {
        std::map<std::string, nlohmann::json> refused;
        for (const auto& file : listing.at("refused"))
            refused[Utils::getFilename(file.at("path").get<std::string>())] = file;
        return refused;
    }
};

TEST_F(PluginsVerb, ListsTheBuiltPluginsOfItsOwnTreeWithoutAnySetting) {
    const InstallRoot none("");
    const ToolRun run = runBuilt("plugins --json");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const auto listing = run.json();
    EXPECT_EQ(listing.at("schema"), 3);
    std::map<std::string, nlohmann::json> plugins;
    for (const auto& plugin : listing.at("plugins"))
        plugins[plugin.at("name").is_null() ? "" : plugin.at("name").get<std::string>()] = plugin;
    ASSERT_EQ(plugins.count("MOCKVIDEODEVICE_IMPL"), 1U) << run.out;
    const auto& video = plugins["MOCKVIDEODEVICE_IMPL"];
    EXPECT_EQ(video.at("guid"), "39E23FC6-E54A-4CD0-9FB4-67C1781E2C5B");
    EXPECT_EQ(video.at("kind"), "video device");
    EXPECT_EQ(video.at("type"), 5);
    EXPECT_EQ(video.at("sdkVersion"), "1.4.5.2151");
    EXPECT_EQ(plugins["MOCKAUDIODEVICE_IMPL"].at("kind"), "audio device");
    EXPECT_EQ(plugins["MOCK_ENUMERATOR_IMPL"].at("kind"), "enumerator");
    EXPECT_FALSE(listing.contains("refused"));
}

TEST_F(PluginsVerb, SaysOfEveryOtherFileWhyItIsRefusedAndWhatHelps) {
    makePluginDirectory();
    addCopy("simulated_video_device", "a_video" + ending());
    addCopy("simulated_video_device", "b_video_again" + ending());
    addCopy("simulated_audio_device", "audio-d" + ending());
    addFile("readme.txt", "hello");
    addFile("text" + ending(), "I am no library");
    addFile("empty" + ending(), "");
    const InstallRoot root(path());
    const ToolRun run = ToolTest::run({"plugins", "--all", "--json"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const auto listing = run.json();
    ASSERT_EQ(listing.at("plugins").size(), 1U);
    EXPECT_THAT(listing["plugins"][0]["path"].get<std::string>(), HasSubstr("a_video"));

    auto refused = refusedOf(listing);
    EXPECT_EQ(refused.size(), 5U);
    const std::map<std::string, std::string> steps{{"b_video_again" + ending(), "duplicate"},
                                                   {"audio-d" + ending(), "name"},
                                                   {"readme.txt", "ending"},
                                                   {"text" + ending(), "open"},
                                                   {"empty" + ending(), "open"}};
    for (const auto& [name, step] : steps) {
        ASSERT_EQ(refused.count(name), 1U) << name;
        EXPECT_EQ(refused[name].at("step"), step) << name;
        EXPECT_FALSE(refused[name].at("reason").get<std::string>().empty()) << name;
        EXPECT_FALSE(refused[name].at("remedy").get<std::string>().empty()) << name;
    }

    const ToolRun text = ToolTest::run({"plugins", "--all"});
    EXPECT_THAT(text.out, testing::AllOf(HasSubstr("MOCKVIDEODEVICE_IMPL"), HasSubstr("refused: "),
                                         HasSubstr("remedy")));
}

TEST_F(PluginsVerb, EndsWithItsOwnCodeWhenNothingIsUsable) {
    const InstallRoot root(path());
    const ToolRun missing = ToolTest::run({"plugins"});
    EXPECT_EQ(missing.exitCode, 4);
    EXPECT_THAT(missing.err, HasSubstr("there is no directory '" + path("bin/Plugins/") + "'"));
    EXPECT_EQ(missing.out, "");

    makePluginDirectory();
    addFile("text" + ending(), "I am no library");
    const ToolRun useless = ToolTest::run({"plugins"});
    EXPECT_EQ(useless.exitCode, 4);
    EXPECT_THAT(useless.err, HasSubstr("--all tells why"));
    const ToolRun stream = runBuilt("stream"); // in a process without an older scan
    EXPECT_EQ(stream.exitCode, 4);
    EXPECT_THAT(stream.err, HasSubstr("no descriptor store plug-in is registered"));
}

} // namespace
} // namespace Zentara::Tool
