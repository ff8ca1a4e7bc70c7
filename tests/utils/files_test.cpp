#include <zentara/utils/files.h>

#include <filesystem>

#include <gmock/gmock.h>

#include <zentara/utils/dynamic_library.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/process.h>
#include <zentara/utils/text.h>

#include "support/failure.h"
#include "support/log_capture.h"
#include "utils/platform/directory.h"
#include "utils/platform/files.h"

namespace Zentara::Utils {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using TestSupport::messageOf;
using TestSupport::TemporaryDirectory;

TEST(Paths, AreTakenApart) {
    const std::tuple<const char*, const char*, const char*, const char*> rows[]{
        {"a/b.c/d.tar.gz", "a/b.c/", "d.tar.gz", "a/b.c/d.tar"},
        {"a/b.c/d", "a/b.c/", "d", "a/b.c/d"},
        {"/.hidden", "/", ".hidden", "/.hidden"},
        {"name.", "", "name.", "name"},
        {"dir/", "dir/", "", "dir/"},
        {"", "", "", ""},
    };
    for (const auto& [path, directory, name, withoutExtension] : rows) {
        EXPECT_EQ(getDirectory(path), directory);
        EXPECT_EQ(getFilename(path), name);
        EXPECT_EQ(removeExtension(path), withoutExtension);
        EXPECT_EQ(addTrailingSeparator(directory), directory);
    }
    EXPECT_EQ(addTrailingSeparator("a"), "a/");
}

TEST(Paths, AreMadeCanonical) {
    const std::string here = getWorkingDirectory();
    ASSERT_FALSE(here.empty());
    EXPECT_EQ(canonicalPath(""), here);
    EXPECT_EQ(canonicalPath("."), here);
    EXPECT_EQ(canonicalPath("no/../such//./file"), here + "/such/file");
    EXPECT_EQ(canonicalPath(here + "/a/"), here + "/a");
    const std::string root = here.substr(0, here.find('/') + 1);
    EXPECT_EQ(canonicalPath(root + "../../a"), root + "a");
    EXPECT_EQ(canonicalPath(root), root);
    EXPECT_EQ(canonicalPath(nativePath("a/b")), here + "/a/b");
}

// On Windows '\' separates too, and letter case does not tell names apart.
TEST(Paths, FollowTheSystem) {
    const bool windows = Platform::isSeparator('\\');
    EXPECT_EQ(Platform::fileNamesIgnoreCase(), windows);
    EXPECT_EQ(nativePath("a/b"), windows ? "a\\b" : "a/b");
    EXPECT_EQ(getFilename("a\\b"), windows ? "b" : "a\\b");
    EXPECT_EQ(addTrailingSeparator("a\\"), windows ? "a\\" : "a\\/");
}

TEST(Files, KeepEveryByte) {
    const TemporaryDirectory directory;
    const std::string path = directory.path("f\xC3\xAFle.bin");
    std::string contents("\0\r\n\x1A\xFF", 5);
    for (int i = 0; i < 20000; ++i)
        contents += static_cast<char>(i * 7);
    writeFile(path, contents);
    EXPECT_EQ(readFile(path), contents);
    writeFile(path, "");
    EXPECT_EQ(readFile(path), "");
}

TEST(Files, SayWhatCouldNotBeOpened) {
    const TemporaryDirectory directory;
    const std::string missing = directory.path("no/such");
    EXPECT_THAT(messageOf<UIOException>([&] { readFile(missing); }),
                HasSubstr("cannot open file '" + missing + "' ("));
    EXPECT_THAT(messageOf<UIOException>([&] { writeFile(missing, "x"); }),
                HasSubstr("cannot open file '" + missing + "' ("));
    EXPECT_THAT(messageOf<UIOException>([&] { readFile(directory.path()); }), HasSubstr(directory.path()));
    EXPECT_NE(messageOf<UIOException>([&] { readFile(std::string("a\0b", 3)); }), "nothing was thrown");
}

TEST(FileList, HoldsRegularFilesOfOneExtensionInOrder) {
    const TemporaryDirectory directory;
    for (const char* name :
         {"b.dll", "a.dll", "B.dll.txt", "adll", ".dll", "c-d.dll", "z\xC3\xA9.dll", "upper.DLL"})
        writeFile(directory.path(name), "");
    std::filesystem::create_directory(TemporaryDirectory::fromUtf8(directory.path("folder.dll")));
    std::vector<std::string> expected = {"a.dll", "b.dll", "c-d.dll", "z\xC3\xA9.dll"};
    if (Platform::fileNamesIgnoreCase())
        expected.insert(expected.begin() + 3, "upper.DLL");
    for (std::string& name : expected)
        name = directory.path(name);
    EXPECT_EQ(getFileList(directory.path(), "dll"), expected);
    std::string bare = directory.path();
    bare.pop_back();
    EXPECT_EQ(getFileList(bare, "dll"), expected);
    EXPECT_EQ(getFileList(directory.path(), "").size(), 8u);
    EXPECT_THAT(getFileList(directory.path("missing"), "dll"), IsEmpty());
    EXPECT_THAT(getFileList(directory.path("a.dll"), "dll"), IsEmpty());
}

// Too long a name is no missing directory on every system.
TEST(FileList, LogsAWalkThatFails) {
    const TestSupport::LogCapture log;
    const std::string tooLong(300, 'x');
    std::vector<std::string> names;
    const bool fails = Platform::listFiles(tooLong, names) == Platform::DirectoryWalk::Failed;
    EXPECT_EQ(fails, !Platform::fileNamesIgnoreCase());
    EXPECT_THAT(getFileList(tooLong, "dll"), IsEmpty());
    EXPECT_EQ(fails ? 1u : 0u, log.warnings().size());
    EXPECT_THAT(log.warnings(), testing::Each(testing::StartsWith("FindNextFile error (")));
}

TEST(Console, HasNoKeyInATest) { EXPECT_FALSE(keyPressed()); }

TEST(Processes, AreFoundByName) {
    std::string found = "untouched";
    EXPECT_TRUE(findSimilarProcess("UTILS_test", found));
    EXPECT_THAT(found, HasSubstr("utils_tests"));
    EXPECT_TRUE(findProcess(found));
    EXPECT_EQ(findProcess(toUpper(found)), Platform::fileNamesIgnoreCase());
    EXPECT_FALSE(findProcess("utils_test"));
    EXPECT_FALSE(findProcess("") || findSimilarProcess("", found));
    EXPECT_FALSE(findSimilarProcess("no process is called this", found));
}

TEST(SharedLibraries, StayOnlyWhenPinned) {
    const TemporaryDirectory directory;
    const std::string path = directory.path("library.bin");
    writeFile(path, readFile(ZENTARA_TEST_LIBRARY));
    const auto callOnce = [&](const char* name) {
        void* library = loadSharedLibrary(path, 2);
        EXPECT_EQ(getFunction(library, "question"), nullptr);
        const int result = reinterpret_cast<int (*)()>(getFunction(library, name))();
        EXPECT_TRUE(freeSharedLibrary(library));
        return result;
    };
    EXPECT_EQ(callOnce("count"), 1);
    EXPECT_EQ(callOnce("count"), 1) << "the library left the process in between";
    EXPECT_NE(callOnce("pin"), 0);
    EXPECT_EQ(callOnce("count"), 1);
    EXPECT_EQ(callOnce("count"), 2);
}

TEST(SharedLibraries, RefuseWhatIsNone) {
    const TemporaryDirectory directory;
    writeFile(directory.path("text.dll"), "no library at all");
    for (const std::string& path :
         {std::string(), std::string("no-such-7313.dll"), directory.path("text.dll"), directory.path(),
          directory.path("missing.dll"), std::string("\0", 1)}) {
        EXPECT_EQ(loadSharedLibrary(path, 2), nullptr) << path;
    }
    EXPECT_EQ(getFunction(nullptr, "printf"), nullptr);
    EXPECT_FALSE(freeSharedLibrary(nullptr));
}

} // namespace
} // namespace Zentara::Utils
