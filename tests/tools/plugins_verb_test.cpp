#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>

#include <zentara/core/plugin_probe.h>
#include <zentara/utils/files.h>

#include "tools/tool_fixture.h"

namespace Zentara::Tool {
namespace {

using testing::HasSubstr;
using TestSupport::TemporaryDirectory;

/// A plug-in directory of the test's own, which the first file makes.
class PluginsVerb : public ToolTest {
protected:
    void addFile(const std::string& name, const std::string& contents) const {
        std::filesystem::create_directories(TemporaryDirectory::fromUtf8(path("bin/Plugins")));
        Utils::writeFile(path("bin/Plugins/" + name + ending()), contents);
    }

    static std::string ending() { return std::string(".") + Core::pluginFileExtension(); }
};

TEST_F(PluginsVerb, ListsTheBuiltPluginsOfItsOwnTreeWithoutAnySetting) {
    const InstallRoot none("");
    const ToolRun run = runBuilt("plugins --json");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    const auto listing = run.json();
    EXPECT_THAT(run.out, testing::AllOf(HasSubstr("\"MOCKVIDEODEVICE_IMPL\""), HasSubstr("\"1.4.5.2151\"")));
    EXPECT_FALSE(listing.contains("refused"));
}

TEST_F(PluginsVerb, NamesWhoEndsTheProcessAndListsTheOthers) {
    addFile("text", "I am no library");
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
    EXPECT_EQ(listing.at("plugins").size(), 2U) << run.out;
    std::map<std::string, nlohmann::json> refused;
    for (const auto& file : listing.at("refused"))
        refused[Utils::getFilename(file.at("path").get<std::string>())] = file;
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

TEST_F(PluginsVerb, TellsWhatOnlySomeMayRead) {
    if (std::filesystem::path::preferred_separator == '\\')
        return;
    addFile("secret", "");
    const std::string plugins = path("bin/Plugins");
    const InstallRoot root(path());
    // The superuser may read everything unless it gives that up.
    const std::string output = path("said");
    const auto askUnprivileged = [&](const std::string& before) {
        const int status = std::system((before + "; " + unprivileged + "'" + builtTool().string() +
                                        "' plugins --all > '" + output + "' 2>&1")
                                           .c_str());
        return std::pair(status >> 8, Utils::readFile(output));
    };
    const auto [code, said] = askUnprivileged("chmod 0 '" + plugins + "'/*; chmod 777 '" + plugins + "'");
    EXPECT_THAT(said, testing::AllOf(HasSubstr("refused: "), HasSubstr("may not be read"),
                                     HasSubstr("everybody may write to")));
    const auto [unreadable, why] = askUnprivileged("chmod 0 '" + plugins + "'");
    EXPECT_EQ(unreadable, 5) << why;
    EXPECT_THAT(why, HasSubstr("cannot read the plug-in directory"));
    std::filesystem::permissions(TemporaryDirectory::fromUtf8(plugins), std::filesystem::perms::owner_all);
}

TEST_F(PluginsVerb, EndsWithItsOwnCodeWhenNothingIsUsable) {
    const InstallRoot root(path());
    const ToolRun missing = ToolTest::run({"plugins"});
    EXPECT_EQ(missing.exitCode, 4);
    EXPECT_THAT(missing.err, HasSubstr("there is no directory '" + path("bin/Plugins/") + "'"));
    addFile("text", "I am no library");
    EXPECT_THAT(ToolTest::run({"plugins"}).err, HasSubstr("--all tells why"));
}

} // namespace
} // namespace Zentara::Tool
