#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include <gmock/gmock.h>

#include <zentara/host/cameras.h>
#include <zentara/host/flash.h>
#include <zentara/rom/container_section_type.h>
#include <zentara/utils/environment_variable.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/files.h>

#include "host/flash/backup.h"
#include "support/failure.h"
#include "support/program.h"
#include "support/scoped_variable.h"
#include "support/temporary_directory.h"

namespace Zentara::Host {
namespace {

using Access = Flash::Access;
using Obstacle = FlashChange::Obstacle;
using TestSupport::codeOf;

/// What puts one byte into an image, planned by hand.
FlashChange byteChange(const FlashImage& before, std::uint32_t address, std::uint8_t byte) {
    FlashImage after = before;
    after.write(address, {byte});
    return {before, after, after.writes(), {}, {}, false, {}, Obstacle::None, {}, false, false};
}

class FlashTest : public testing::Test {
protected:
    /// An image file of 8 KiB with its header at the end, and in it a section of 600 bytes.
    Flash imageWithASection() {
        FlashOptions options;
        options.size = 8192;
        options.header = FlashOptions::Header::End;
        Flash flash = Flash::create(image, options);
        flash.apply(flash.planFormat(flash.load()));
        const FlashImage before = flash.load();
        flash.apply(flash.plan(before, {{1, {77, 1, Bytes(600, 1)}}}), noBackup);
        return flash;
    }

    const ApplyOptions noBackup{.keeps = false, .backup = {}, .kept = {}};
    const TestSupport::TemporaryDirectory directory;
    const std::string image = directory.path("camera.bin");
};

/// The shortest change that the format lets destroy a neighbour, and what it costs.
TEST_F(FlashTest, PlansAChangeAndRefusesWhatWouldCostANeighbour) {
    Flash flash = imageWithASection();
    const FlashImage before = flash.load();
    FlashContent wanted = contentOf(before);
    wanted[2] = {77, 1, Bytes(300, 2)};
    const FlashChange costly = flash.plan(before, wanted);
    EXPECT_EQ(costly.obstacle, Obstacle::Costly);
    EXPECT_TRUE(costly.rebuildHelps);
    EXPECT_THAT(costly.refusal->details(),
                testing::IsSupersetOf({testing::HasSubstr("the container header would be lost"),
                                       testing::HasSubstr("section 1 (type 77, 600 bytes) would be lost")}));
    EXPECT_EQ(codeOf([&] { flash.apply(costly); }), Failure::Verification);
    EXPECT_EQ(flash.load().bytes(), before.bytes());

    const FlashChange rebuilt = flash.plan(before, wanted, {.rebuild = true});
    EXPECT_EQ(rebuilt.after.area().chunkSize, 512U)
        << "the smallest in which at most one section has several chunks";
    std::string told;
    const std::string kept = flash.apply(
        rebuilt, {.backup = directory.path("b"), .kept = [&](const std::string& file) { told = file; }});
    EXPECT_EQ(told, kept);
    EXPECT_EQ(flash.area().chunkSize, 512U);
    EXPECT_EQ(codeOf([&] { flash.apply(rebuilt, noBackup); }), Failure::Busy)
        << "it was planned from other bytes";
    EXPECT_LE(backupNoteOf(freeBackupName("d/" + std::string(255, 'n'))).size(), 2U + 255U);
    EXPECT_EQ(contentOf(flash.load()), wanted);

    FlashContent other = wanted;
    other[3] = {static_cast<std::uint8_t>(ROM::ContainerSectionType::SystemInfo), 1, Bytes(9, 9)};
    const FlashChange unread = flash.plan(flash.load(), other, {.rebuild = true});
    EXPECT_TRUE(unread.takesAway && !unread.refusal);
    EXPECT_THAT(unread.lines, testing::Contains(testing::HasSubstr("wrong afterwards: ")));
    wanted[2].setWritable(false);
    const std::string held = Utils::readFile(image);
    std::error_code noLinks;
    std::filesystem::create_hard_link(TestSupport::TemporaryDirectory::fromUtf8(image),
                                      TestSupport::TemporaryDirectory::fromUtf8(directory.path("held")),
                                      noLinks);
    flash.apply(flash.plan(flash.load(), wanted), noBackup);
    EXPECT_TRUE(noLinks || Utils::readFile(directory.path("held")) == held) << "a new file took its place";
    other = wanted;
    other.erase(2);
    EXPECT_EQ(flash.plan(flash.load(), other).obstacle, Obstacle::ReadOnly);
    flash.apply(flash.planRestore(flash.load(), kept, {.otherCamera = true}), noBackup);
    EXPECT_EQ(flash.load().bytes(), before.bytes());
}

TEST_F(FlashTest, EndsWhereTheProgressSays) {
    Flash flash = imageWithASection();
    for (const std::uint64_t end : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{4000}}) {
        SCOPED_TRACE(end);
        const auto until = [end](std::uint64_t done, std::uint64_t all) { return done < end && done <= all; };
        const FlashChange change = byteChange(flash.load(), 5000, 7);
        EXPECT_EQ(codeOf([&] { flash.apply(change, noBackup, until); }), Failure::Interrupted);
        EXPECT_EQ(Utils::readFile(image)[5000], end == 0 ? '\xFF' : '\x07') << "all of a change or nothing";
        EXPECT_EQ(codeOf([&] { static_cast<void>(flash.load(until)); }), Failure::Interrupted);
    }
}

TEST_F(FlashTest, NoticesThatAnotherProgramChangedTheFile) {
    {
        Flash created = Flash::create(image);
        const FlashImage empty = created.load();
        Utils::writeFile(image, "first");
        EXPECT_EQ(codeOf([&] { created.apply(byteChange(empty, 0, 1)); }), Failure::Busy);
        EXPECT_EQ(Utils::readFile(image), "first");
        OutputFile late(directory.path("late.bin"), {.ifThere = IfThere::Refuse});
        late.write("late");
        Utils::writeFile(late.path(), "first");
        EXPECT_EQ(codeOf([&] { late.commit(); }), Failure::Busy);
        EXPECT_EQ(Utils::readFile(directory.path("late.2.bin")), "late") << "nothing is lost";
        const OutputFile first(directory.path("new"));
        EXPECT_EQ(codeOf([&] { const OutputFile second(first.path()); }), Failure::Busy);
    }
    {
        Flash opened = Flash::image(image, {}, Access::Write);
        const FlashImage first = opened.load();
        Utils::writeFile(image, "other");
        EXPECT_EQ(codeOf([&] { opened.apply(byteChange(first, 0, 1)); }), Failure::Busy);
        EXPECT_EQ(Utils::readFile(image), "other");
        EXPECT_EQ(Utils::getFileList(directory.path(), "bak").size(), 0U) << "of what did not change";
    }
    Flash stored = Flash::image(image, {}, Access::Write);
    EXPECT_EQ(codeOf([&] { static_cast<void>(Flash::image(image, {}, Access::Write)); }), Failure::Busy);
    EXPECT_EQ(codeOf([&] { Flash::image(image).apply(byteChange(stored.load(), 0, 'O')); }), Failure::Usage);
    stored.apply(byteChange(stored.load(), 0, 'O'), noBackup);
    Utils::writeFile(image, "rotten");
    EXPECT_EQ(stored.load().bytes(), Bytes({'O', 't', 'h', 'e', 'r'}));
    EXPECT_EQ(codeOf([&] { stored.apply(byteChange(stored.load(), 0, 'o'), noBackup); }), Failure::Busy);
}

TEST_F(FlashTest, LiesOnACameraWhereItsDescriptionSays) {
    Flash flash = Cameras().open("SIM0345").flash();
    const FlashImage before = flash.load();
    EXPECT_EQ(before.area().size, 0x4000U);
    EXPECT_EQ(codeOf([&] { flash.apply(byteChange(before, 9000, 1), noBackup); }), Failure::Usage);
    Utils::writeFile(image, "another camera's");
    EXPECT_EQ(codeOf([&] { flash.backup(image, before); }), Failure::Usage);
    EXPECT_FALSE(std::filesystem::exists(image + ".json")) << "it would say whose the other one is";
}

/// The second process of the tests below: the same program, with one of these tests.
int runPeer(const std::string& test, const std::string& image) {
    const TestSupport::ScopedVariable named("ZENTARA_TEST_IMAGE", image);
    return Tests::runProgram(
        std::filesystem::path(testing::internal::GetArgvs().at(0)).filename(),
        "--gtest_also_run_disabled_tests --gtest_brief=1 --gtest_filter=FlashTest.DISABLED_" + test);
}

constexpr int savings = 300;

/// Adds 1 to a byte of an image over and over, each time from what stands in the file.
void saveOverAndOver(const std::string& image, std::uint32_t address) {
    for (int saved = 0; saved < savings;) {
        const Failure::Code code = codeOf([&] {
            Flash flash = Flash::image(image, {}, Access::Write);
            const FlashImage before = flash.load();
            const int byte = before.bytes().at(address);
            flash.apply(byteChange(before, address, static_cast<std::uint8_t>(byte + 1)),
                        {.keeps = false, .backup = {}, .kept = {}});
        });
        ASSERT_THAT(code, testing::AnyOf(Failure::None, Failure::Busy));
        saved += code == Failure::None;
    }
}

TEST_F(FlashTest, DISABLED_SaveOverAndOver) {
    saveOverAndOver(Utils::EnvironmentVariable("ZENTARA_TEST_IMAGE").getValue(), 1);
}

TEST_F(FlashTest, DISABLED_DieInASaving) {
    OutputFile file(Utils::EnvironmentVariable("ZENTARA_TEST_IMAGE").getValue());
    file.write("half");
    std::_Exit(9);
}

TEST_F(FlashTest, LosesNothingToAnotherWriterNorShowsAReaderHalf) {
    Utils::writeFile(image, std::string(50000, 'w'));
    EXPECT_EQ(runPeer("DieInASaving", image), 9);
    std::atomic<bool> isOver = false;
    std::thread peer([&] { EXPECT_EQ(runPeer("SaveOverAndOver", image), 0); });
    std::thread here([&] { saveOverAndOver(image, 0); });
    std::thread reader([&] {
        for (unsigned looks = 0; !isOver || looks < 10; ++looks)
            try {
                EXPECT_EQ(Utils::readFile(image).size(), 50000U);
            } catch (const Utils::UIOException&) { // Windows may refuse a file in the moment of its renaming
            }
    });
    peer.join();
    here.join();
    isOver = true;
    reader.join();
    EXPECT_EQ(Utils::readFile(image).substr(0, 3),
              std::string(2, static_cast<char>(static_cast<std::uint8_t>('w' + savings))) + "w");
    std::filesystem::directory_iterator left(TestSupport::TemporaryDirectory::fromUtf8(directory.path()));
    EXPECT_EQ(std::distance(std::move(left), {}), 1) << "what the dead writer left has gone";
}

} // namespace
} // namespace Zentara::Host
