#include <zentara/utils/install_root.h>

#include <gmock/gmock.h>

#include "support/log_capture.h"
#include "support/scoped_variable.h"
#include "utils/install_root_lookup.h"
#include "utils/platform/files.h"
#include "utils/platform/key_store_editor.h"

namespace Zentara::Utils {
namespace {

using Platform::KeyView;

constexpr const char* plainKey = "Software\\Korvalis\\ZentaraSDK";
constexpr const char* kitKey = "Software\\Korvalis\\ZentaraSDK-CDK";
constexpr const char* fallback = "fallback";

/// Real keys of the registry on Windows, an INI file of its own elsewhere.
class InstallRootTest : public testing::Test {
protected:
    InstallRootTest() { forgetEverything(); }
    ~InstallRootTest() override { forgetEverything(); }

    void forgetEverything() {
        for (const char* key : {plainKey, kitKey})
            for (KeyView view : {KeyView::Bits32, KeyView::Bits64})
                Platform::removeKey(store, key, view);
    }
    void set(const char* key, KeyView view, const char* name, const std::string& value) {
        ASSERT_TRUE(Platform::writeKeyText(store, key, view, name, value));
    }
    void installPlain(KeyView view, const std::string& where) { set(plainKey, view, "InstallDir", where); }
    void installKit(KeyView view, const std::string& version, const std::string& where) {
        set(kitKey, view, "Version", version);
        set(kitKey, view, "InstallDir", where);
    }
    /// Root and suffix.
    std::string found() const {
        const InstallRoot result = findInstallRoot(store, fallback);
        EXPECT_TRUE(result.readable);
        return result.root + result.suffix;
    }

    const bool isRegistry = Platform::isSeparator('\\');
    const TestSupport::TemporaryDirectory directory;
    const std::string store = isRegistry ? "HKEY_LOCAL_MACHINE" : directory.path("sdk.ini");
    const TestSupport::ScopedVariable noRoot{"ZENTARASDK_ROOT", ""};
};

TEST_F(InstallRootTest, ReadsThePlainKeyInThe64BitView) {
    installPlain(KeyView::Bits32, "thirty-two");
    EXPECT_EQ(found(), "fallback/");
    installPlain(KeyView::Bits64, "d\xC3\xA9pth camera/");
    EXPECT_EQ(found(), "d\xC3\xA9pth camera/");
    EXPECT_EQ(findNativeInstallRoot(store, fallback).root, "d\xC3\xA9pth camera/");
    ASSERT_TRUE(Platform::removeKey(store, plainKey, KeyView::Bits64));
    EXPECT_EQ(found(), "fallback/");
    EXPECT_TRUE(Platform::removeKey(store, plainKey, KeyView::Bits64)) << "it has gone already";
    const std::string odd = "= with ; signs" + std::string(5000, 'x') + "/";
    set(plainKey, KeyView::Bits64, "iNSTALLdIR", odd);
    EXPECT_EQ(found(), odd);
    forgetEverything();
    const TestSupport::ScopedVariable place("ZENTARA_TEST_PLACE", "D:\\T\xC3\xB6st");
    ASSERT_TRUE(Platform::writeKeyExpandable(store, plainKey, KeyView::Bits64, "InstallDir",
                                             "%ZENTARA_TEST_PLACE%/%ZENTARA_TEST_UNSET%/"));
    EXPECT_EQ(found(), std::string(isRegistry ? "D:\\T\xC3\xB6st" : "%ZENTARA_TEST_PLACE%") +
                           "/%ZENTARA_TEST_UNSET%/");
}

TEST_F(InstallRootTest, ChoosesTheDevelopmentKitByItsVersion) {
    // What the views of 32 and of 64 bits have, and what is found.
    const std::tuple<const char*, const char*, const char*, const char*> rows[]{
        {"64-bit view only", nullptr, "1.4.7.x", "kit64/-CDK"},
        {"32-bit view only", "1.4.0.1", nullptr, "kit32/-CDK"},
        {"32-bit view newer", "1.4.8.0", "1.4.7.0", "kit32/-CDK"},
        {"same version", "1.4.7.9", "1.4.7.0", "kit64/-CDK"},
        {"64-bit view newer", "1.4.6.0", "1.4.10.0", "kit64/-CDK"},
        {"other versions", "1.3.0.0", "2.4.0.0", "plain/"},
        {"one of another version", "1.5.9.0", "1.4.1.0", "kit64/-CDK"},
        {"major and minor that only add up", "0.260.1.0", "0.260.1.0", "plain/"},
        {"unparsable next to a good one", "1.4.9", "1.4.1.0", "kit64/-CDK"},
        {"unparsable", "one.four", "1.4.99999999999.1", "plain/"},
    };
    for (const auto& [name, version32, version64, root] : rows) {
        SCOPED_TRACE(name);
        forgetEverything();
        installPlain(KeyView::Bits64, "plain");
        if (version32)
            installKit(KeyView::Bits32, version32, "kit32");
        if (version64)
            installKit(KeyView::Bits64, version64, "kit64");
        EXPECT_EQ(found(), root);
        EXPECT_EQ(findNativeInstallRoot(store, fallback).root, "plain/");
    }
}

TEST_F(InstallRootTest, LogsAVersionItCannotParse) {
    const TestSupport::LogCapture log;
    installKit(KeyView::Bits64, "1.4.", "kit64");
    EXPECT_EQ(found(), "fallback/");
    // One that is no text at all is no better.
    ASSERT_TRUE(Platform::writeKeyNonText(store, kitKey, KeyView::Bits32, "Version"));
    EXPECT_EQ(found(), "fallback/");
    EXPECT_THAT(log.warnings(), testing::ElementsAre("Failed to parse version", "Failed to parse version",
                                                     "Failed to parse version"));
    // A directory that is no text is reported.
    ASSERT_TRUE(Platform::writeKeyNonText(store, plainKey, KeyView::Bits64, "InstallDir"));
    EXPECT_FALSE(findInstallRoot(store, fallback).readable);
    EXPECT_FALSE(findNativeInstallRoot(store, fallback).readable);
    EXPECT_EQ(findNativeInstallRoot(store, fallback).root, "");
}

TEST_F(InstallRootTest, PutsTheEnvironmentFirst) {
    installKit(KeyView::Bits64, "1.4.7.0", "kit64");
    const TestSupport::ScopedVariable root("ZENTARASDK_ROOT", "p\xC3\xB6rtable");
    EXPECT_EQ(found(), "p\xC3\xB6rtable/");
    std::string told;
    std::string suffix = "left over";
    EXPECT_EQ(getZTRootDirectory(told, suffix), 0);
    EXPECT_EQ(told + suffix, "p\xC3\xB6rtable/");
    EXPECT_EQ(getNativeZTRootDirectory(told), 0);
    EXPECT_EQ(told, "p\xC3\xB6rtable/");
}

TEST_F(InstallRootTest, ReadsTheRegistryFromTheLibrary) {
    if (!isRegistry)
        GTEST_SKIP() << "the machine's own file is not ours to write";
    installPlain(KeyView::Bits64, "C:\\Plain");
    installKit(KeyView::Bits64, "1.4.7.0", "C:\\Kit\\");
    std::string root;
    std::string suffix;
    EXPECT_EQ(getZTRootDirectory(root, suffix), 0);
    EXPECT_EQ(root + suffix, "C:\\Kit\\-CDK");
    EXPECT_EQ(getNativeZTRootDirectory(root), 0);
    EXPECT_EQ(root, "C:\\Plain/");
    ASSERT_TRUE(Platform::writeKeyNonText(store, plainKey, KeyView::Bits64, "InstallDir"));
    EXPECT_NE(getNativeZTRootDirectory(root), 0);
}

} // namespace
} // namespace Zentara::Utils
