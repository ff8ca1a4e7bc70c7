#include <cstdlib>
#include <filesystem>
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
