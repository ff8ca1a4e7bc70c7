#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
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

TEST_F(PluginsVerb, NamesWhoEndsTheProcessAndListsTheOthers) {
    makePluginDirectory();
    addCopy("simulated_video_device", "a_video" + ending());
    const struct {
        const char* behaviour;
        const char* step; ///< null: nothing is wrong with it
        bool fatal;
        const char* reason;
    } rows[]{
        {"load crash", "open", true, "while it is loaded"},
        {"load abort", "open", true, "while it is loaded"},
        {"load hang", "open", true, "hangs while it is loaded"},
        {"load exit", "open", true, "ends the process while it is loaded"},
        {"guid crash", "implGUID", true, "in \"getImplGUID\""},
        {"data", "implGUID", true, "in \"getImplGUID\""},
        {"guid throw", "implGUID", false, R"(throws from "getImplGUID": thrown\n\x1b[2Jxxx)"},
        {"type exit", "implType", true, "ends the process in \"getImplType\""},
        {"version hang", "pluginVersion", true, "hangs in \"getPluginVersion\""},
        {"sdk abort", "sdkVersion", true, "in \"getSDKVersion\""},
        {"unload crash", "unload", true, "while it is unloaded"},
        {"unload exit", "unload", true, "ends the process while it is unloaded"},
        {"load print", nullptr, false, ""},
        {"sdk print", nullptr, false, ""},
    };
    // The loader of Windows survives a crash in what it calls itself.
    const auto isSurvived = [](const std::string& behaviour) {
        return std::filesystem::path::preferred_separator == '\\' &&
               (behaviour == "load crash" || behaviour == "unload crash");
    };
    for (const auto& row : rows)
        if (!isSurvived(row.behaviour))
            copyMisbehaving(row.behaviour, row.behaviour + ending(),
                            std::string(row.behaviour) == "data" ? "misbehaving_data" : "misbehaving");
    const InstallRoot root(path());
    const ToolRun run = runBuilt("plugins --all --json");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out.find("SPOILT"), std::string::npos);
    const auto listing = run.json();
    EXPECT_EQ(listing.at("plugins").size(), 3U) << run.out;
    auto refused = refusedOf(listing);
    for (const auto& row : rows) {
        if (isSurvived(row.behaviour))
            continue;
        const auto& file = refused[row.behaviour + ending()];
        ASSERT_EQ(file.is_null(), row.step == nullptr) << row.behaviour;
        if (row.step == nullptr)
            continue;
        EXPECT_EQ(file.at("step"), row.step) << file;
        EXPECT_EQ(file.at("fatal"), row.fatal) << file;
        EXPECT_THAT(file.at("reason").get<std::string>(), HasSubstr(row.reason));
        EXPECT_LE(file.at("reason").get<std::string>().size(), 1024U);
        EXPECT_EQ(run.err.find(row.behaviour + ending()) != std::string::npos, row.fatal) << row.behaviour;
    }
}

/// A library's first bytes, as far as they say for which machine it was made.
std::string headOf(bool isWindows, unsigned char machine) {
    std::string head(4096, '\0');
    head.replace(0, isWindows ? 2 : 5,
                 isWindows ? "MZ"
                           : "\x7F"
                             "ELF\2");
    head[0x3C] = 0x40;
    head.replace(0x40, 2, isWindows ? "PE" : "");
    head[isWindows ? 0x44 : 18] = static_cast<char>(machine);
    head[0x45] = static_cast<char>(isWindows ? 0xAA : 0);
    return head;
}

TEST_F(PluginsVerb, TellsEachOddEntryWithItsOwnRemedy) {
    makePluginDirectory();
    const auto at = [this](const std::string& name) {
        return TemporaryDirectory::fromUtf8(path("bin/Plugins/" + name + ending()));
    };
    std::map<std::string, const char*> reasons{{"folder", "is a folder"},
                                               {"arm", "is a library for Linux on AArch64"},
                                               {"windows arm", "is a library for Windows on AArch64"}};
    std::filesystem::create_directory(at("folder"));
    addFile("arm" + ending(), headOf(false, 183));
    addFile("windows arm" + ending(), headOf(true, 0x64));
    std::error_code none; // where there are no links
    std::filesystem::create_symlink("nowhere", at("dangling"), none);
    if (!none) {
        std::filesystem::create_symlink("round" + ending(), at("round"));
        std::filesystem::create_symlink("/dev/null", at("device"));
        EXPECT_EQ(std::system(("mkfifo '" + at("pipe").string() + "'").c_str()), 0);
        reasons.insert({{"dangling", "is a link to something that is not there"},
                        {"round", "leads back to itself"},
                        {"device", "is a device"},
                        {"pipe", "is a pipe"}});
    }
    const InstallRoot root(path());
    auto refused = refusedOf(ToolTest::run({"plugins", "--all", "--json"}).json());
    EXPECT_EQ(refused.size(), reasons.size());
    std::set<std::string> remedies;
    for (const auto& [name, reason] : reasons) {
        const auto& file = refused[name + ending()];
        ASSERT_FALSE(file.is_null()) << name;
        EXPECT_THAT(file.at("reason").get<std::string>(), HasSubstr(reason));
        remedies.insert(file.at("remedy"));
    }
    EXPECT_GE(remedies.size() + 1, reasons.size()) << "the two libraries want the same";

    if (none)
        return;
    std::filesystem::permissions(at("arm"), std::filesystem::perms::none);
    std::filesystem::permissions(at("").parent_path(), std::filesystem::perms::all);
    // The superuser may read everything, so somebody else has to ask.
    const std::string output = path("said");
    const auto askAsNobody = [&output] {
        const int status = std::system(
            (std::string(asNobody) + "'" + builtTool().string() + "' plugins --all > '" + output + "' 2>&1")
                .c_str());
        return std::pair(status >> 8, Utils::readFile(output));
    };
    const auto [code, said] = askAsNobody();
    EXPECT_THAT(said, testing::AllOf(HasSubstr("may not be read"), HasSubstr("everybody may write to")));
    std::filesystem::permissions(at("").parent_path(), std::filesystem::perms::none);
    const auto [unreadable, why] = askAsNobody();
    EXPECT_EQ(unreadable, 5) << why;
    EXPECT_THAT(why, HasSubstr("cannot read the plug-in directory"));
    std::filesystem::permissions(at("").parent_path(), std::filesystem::perms::owner_all);
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
}

} // namespace
} // namespace Zentara::Tool
