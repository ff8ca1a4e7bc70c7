#include <filesystem>
#include <map>
#include <set>
#include <string>

#include <gmock/gmock.h>

#include <zentara/core/plugin_probe.h>
#include <zentara/host/failure.h>
#include <zentara/host/plugins.h>
#include <zentara/utils/files.h>

#include "support/program.h"
#include "support/scoped_variable.h"
#include "support/temporary_directory.h"

namespace Zentara::Host {
namespace {

using testing::HasSubstr;
using TestSupport::TemporaryDirectory;

/// A plug-in directory of the test's own.
class Plugins : public testing::Test {
protected:
    Plugins() { std::filesystem::create_directories(fileAt("")); }

    static std::string ending() { return std::string(".") + Core::pluginFileExtension(); }
    [[nodiscard]] std::filesystem::path fileAt(const std::string& name) const {
        return TemporaryDirectory::fromUtf8(directory.path("bin/Plugins/" + name));
    }
    /// \return its path
    std::string addFile(const std::string& name, const std::string& contents) const {
        const std::string path = directory.path("bin/Plugins/" + name + ending());
        Utils::writeFile(path, contents);
        return path;
    }
    /// A copy of a built plug-in under another name.
    void addCopy(const std::string& plugin, const std::string& name) const {
        std::filesystem::copy_file(Tests::programDirectory() / "Plugins" / (plugin + ending()),
                                   fileAt(name + ending()));
    }

    PluginDirectory found;

    /// What is said of each refused file, by its name.
    std::map<std::string, RefusedFile> refused() {
        found = surveyPlugins();
        std::map<std::string, RefusedFile> files;
        for (const RefusedFile& file : found.refused)
            files[Utils::getFilename(file.path)] = file;
        return files;
    }

private:
    const TemporaryDirectory directory;
    const TestSupport::ScopedVariable root{"ZENTARASDK_ROOT", directory.path()};
};

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

TEST_F(Plugins, AreToldFromEachOddEntryWithItsOwnRemedy) {
    addCopy("simulated_video_device", "a_video");
    addCopy("simulated_video_device", "b_video_again");
    addCopy("simulated_audio_device", "audio-d");
    std::filesystem::create_directory(fileAt("folder" + ending()));
    addFile("arm", headOf(false, 183));
    addFile("windows arm", headOf(true, 0x64));
    addFile("narrow", headOf(false, 62).replace(4, 1, "\1"));
    addFile("phone", headOf(false, 40).replace(4, 1, "\1"));
    addFile("new", headOf(true, 0x99));
    addFile("apple", std::string("\xCF\xFA\xED\xFE\x0C\0\0\1", 8));
    addFile("empty", "");
    const std::string text = addFile("text", "I am no library");
    Utils::writeFile(text.substr(0, text.size() - ending().size()) + ".txt", "hello");
    std::map<std::string, std::pair<const char*, const char*>> rows{
        {"b_video_again", {"duplicate", "which was registered by"}},
        {"audio-d", {"name", "-d."}},
        {"folder", {"kind", "is a folder"}},
        {"arm", {"open", "is a library for Linux on AArch64"}},
        {"windows arm", {"open", "is a library for Windows on AArch64"}},
        {"narrow", {"open", "is a library for Linux on x86-64, 32 bits"}},
        {"phone", {"open", "is a library for Linux on ARM"}},
        {"new", {"open", "is a library for Windows on machine 43673"}},
        {"apple", {"open", "is a library for macOS on AArch64"}},
        {"empty", {"open", ""}},
        {"text", {"open", ""}},
        {"text.txt", {"ending", "does not end in "}}};
    std::error_code none; // where there are no links
    std::filesystem::create_symlink("nowhere", fileAt("dangling" + ending()), none);
    if (!none) {
        std::filesystem::create_symlink("round" + ending(), fileAt("round" + ending()));
        std::filesystem::create_symlink("/dev/null", fileAt("device" + ending()));
        EXPECT_EQ(std::system(("mkfifo '" + fileAt("pipe" + ending()).string() + "'").c_str()), 0);
        rows.insert({{"dangling", {"link", "is a link to something that is not there"}},
                     {"round", {"link", "leads back to itself"}},
                     {"device", {"kind", "is a device"}},
                     {"pipe", {"kind", "is a pipe"}}});
    }
    std::map<std::string, RefusedFile> files = refused();
    ASSERT_EQ(found.registered.size(), 1U);
    const RegisteredPlugin& video = found.registered.front();
    EXPECT_THAT(video.path, HasSubstr("a_video"));
    EXPECT_EQ(video.name.name, "MOCKVIDEODEVICE_IMPL");
    EXPECT_EQ(video.name.guidText(), "39E23FC6-E54A-4CD0-9FB4-67C1781E2C5B");
    EXPECT_EQ(video.kind, std::string("video device"));
    EXPECT_EQ(files.size(), rows.size());
    std::set<std::string> remedies;
    for (const auto& [name, said] : rows) {
        const RefusedFile& file = files[name.ends_with(".txt") ? name : name + ending()];
        EXPECT_EQ(file.step, said.first) << name;
        EXPECT_THAT(file.reason, HasSubstr(said.second)) << name;
        EXPECT_EQ(file.reason.ends_with(", 32 bits"), name == "narrow") << file.reason;
        remedies.insert(file.remedy);
    }
    EXPECT_EQ(remedies.size() + 6, rows.size())
        << "the six libraries want the same, and the two that are none";
    std::filesystem::remove_all(fileAt(""));
    EXPECT_TRUE(refused().empty());
    EXPECT_FALSE(found.isThere);
}

} // namespace
} // namespace Zentara::Host
