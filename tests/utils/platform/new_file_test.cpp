#include "utils/platform/new_file.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include <zentara/utils/files.h>

#include "support/temporary_directory.h"
#include "utils/platform/files.h"
#include "utils/platform/part_name.h"

namespace Zentara::Utils::Platform {
namespace {

namespace fs = std::filesystem;

class NewFileTest : public testing::Test {
protected:
    [[nodiscard]] std::ptrdiff_t filesThere() const {
        return std::distance(
            fs::directory_iterator(TestSupport::TemporaryDirectory::fromUtf8(directory.path())), {});
    }

    const TestSupport::TemporaryDirectory directory;
    const std::string name = directory.path("n\xC3\xA4me.bin");
};

TEST_F(NewFileTest, TakesItsNameWholeOrNotAtAll) {
    Owned<NewFile> file(NewFile::create(name, name));
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->append("01234567", 8) && file->patch(2, "xx", 2) && file->resize(6) &&
                file->append("!", 1));
    EXPECT_EQ(file->size(), 7U);
    EXPECT_EQ(fileKind(name), FileKind::Missing);
    writeFile(name, "old");
    EXPECT_FALSE(file->take(name, false, 0));
    EXPECT_EQ(lastFileTrouble(), FileTrouble::Exists);
    EXPECT_EQ(readFile(name), "old");
    EXPECT_TRUE(file->take(name, true, 0));
    EXPECT_EQ(readFile(name), "01xx45!");
    file.reset(NewFile::create(name, name));
    ASSERT_TRUE(file && file->append("half", 4));
    file.reset();
    EXPECT_EQ(filesThere(), 1) << "one that took no name is gone";
    const Owned<NewFile> one(NewFile::create(name, name));
    const Owned<NewFile> another(NewFile::create(name, name));
    ASSERT_TRUE(one && another);
    EXPECT_NE(one->partPath(), another->partPath()) << "two savers do not meet";
    EXPECT_FALSE(NewFile::create(directory.path("no/such"), {}));
    EXPECT_FALSE(NewFile::create(std::string("a\0b", 3), {}));
}

TEST_F(NewFileTest, KeepsAPartsNameWithinWhatFileSystemsTake) {
    std::string longest = "d/nn";
    while (longest.size() < 2 + 254)
        longest += "\xC3\xA4";
    const std::string part = PartName::make(longest, 1, 2).substr(2);
    EXPECT_EQ(part.size(), 254U) << "a character is not cut";
    EXPECT_TRUE(PartName::isOf(longest, part));
    EXPECT_FALSE(PartName::isOf(longest.substr(0, 100), part));
}

TEST_F(NewFileTest, TellsWhatLiesWhere) {
    writeFile(name, "x");
    EXPECT_EQ(fileKind(name), FileKind::Regular);
    EXPECT_EQ(fileKind(directory.path()), FileKind::Directory);
    EXPECT_EQ(fileKind(isSeparator('\\') ? "NUL" : "/dev/null"), FileKind::Device);
    std::error_code noLinks;
    const fs::path link = TestSupport::TemporaryDirectory::fromUtf8(directory.path("link"));
    fs::create_symlink(TestSupport::TemporaryDirectory::fromUtf8(directory.path("none")), link, noLinks);
    const bool isLink = !noLinks && fs::is_symlink(link);
    EXPECT_EQ(fileKind(directory.path("link")), isLink ? FileKind::DeadLink : FileKind::Missing);
}

TEST_F(NewFileTest, IsWrittenByOneAtATime) {
    writeFile(name, "old");
    Owned<FileLock> right(FileLock::create(name, 0));
    ASSERT_TRUE(right && right->found());
    const auto isBusy = [this] {
        return !Owned<FileLock>(FileLock::create(name, 20)) && lastFileTrouble() == FileTrouble::InUse;
    };
    EXPECT_TRUE(isBusy());
    EXPECT_EQ(readFile(name), "old") << "others may read";
    Owned<NewFile> file(NewFile::create(name, name));
    ASSERT_TRUE(file && file->append("new", 3) && file->take(name, right->found(), 0));
    EXPECT_TRUE(isBusy()) << "of the new file, too";
    file.reset();
    right.reset();
    EXPECT_TRUE(Owned<FileLock>(FileLock::create(name, 0)));
    EXPECT_EQ(readFile(name), "new");
    EXPECT_EQ(filesThere(), 1);
}

/// What is written stays, what nobody writes any more goes, and what only looks so is not touched.
TEST_F(NewFileTest, LosesWhatAKilledProgramLeft) {
    const Owned<NewFile> living(NewFile::create(name, name));
    ASSERT_TRUE(living);
    const std::string left = name + ".0123456789abcdef.part";
    writeFile(left, "left");
    writeFile(name + ".0123456789abcdeX.part", "other");
    EXPECT_TRUE(removeLeftParts(name)) << "one is being written";
    EXPECT_EQ(fileKind(left), FileKind::Missing);
    EXPECT_EQ(filesThere(), 2) << "the living one and the other";
}

TEST_F(NewFileTest, LetsNobodyReadWhoCouldNotBefore) {
    writeFile(name, "secret");
    const fs::path file = TestSupport::TemporaryDirectory::fromUtf8(name);
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    const fs::perms before = fs::status(file).permissions();
    const Owned<NewFile> part(NewFile::create(name, name));
    ASSERT_TRUE(part);
    const fs::path aside = TestSupport::TemporaryDirectory::fromUtf8(part->partPath());
    EXPECT_EQ(fs::status(aside).permissions() & ~before, fs::perms::none) << "from its first moment";
    ASSERT_TRUE(part->take(name, true, 0));
    EXPECT_EQ(fs::status(file).permissions(), before);
}

/// A reader that keeps others from deleting the file, as virus scanners do, is waited for and then named as the cause.
TEST_F(NewFileTest, WaitsForAReaderThatIsInTheWay) {
    writeFile(name, "old");
    const Owned<NewFile> file(NewFile::create(name, name));
    ASSERT_TRUE(file && file->append("new", 3));
    auto reader = std::make_unique<std::ifstream>(TestSupport::TemporaryDirectory::fromUtf8(name));
    if (!file->take(name, true, 50)) {
        EXPECT_EQ(lastFileTrouble(), FileTrouble::InUse);
        reader.reset();
        EXPECT_TRUE(file->take(name, true, 50));
    }
    EXPECT_EQ(readFile(name), "new");
}

} // namespace
} // namespace Zentara::Utils::Platform
