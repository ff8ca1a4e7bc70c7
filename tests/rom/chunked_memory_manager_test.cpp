#include <zentara/rom/chunked_memory_manager.h>

#include "rom/rom_fixture.h"
#include "support/log_capture.h"

namespace Zentara::TestSupport {
namespace {

class ManagerTest : public RomTest {};

TEST_F(ManagerTest, BlankFlashIsNotInitializedUntilFormatWritesTheHeader) {
    for (const bool atStart : {true, false})
        for (const int blank : {0x00, 0xFF}) {
            use({0, 4096, 256, atStart});
            std::fill(flash->image.begin(), flash->image.end(), static_cast<std::uint8_t>(blank));
            mountMemory();
            EXPECT_FALSE(manager->romInitialized());
            EXPECT_EQ(nullptr, manager->getNext(nullptr));
            EXPECT_EQ(nullptr, manager->getHeader());
            formatMemory();
            EXPECT_TRUE(manager->romInitialized());
            ASSERT_EQ(1u, flash->writes.size());
            EXPECT_EQ(atStart ? 0u : 4079u, flash->writes[0].address);
            EXPECT_EQ(hex("01 01 01 00001000 00000100 00000000 04C3"), flash->writes[0].after);
        }
}

TEST_F(ManagerTest, HeadersThatDoNotCount) {
    using Case = std::tuple<const char*, std::uint32_t, std::uint32_t, std::uint8_t, bool>;
    for (const auto& [name, chunkSize, available, minReadoutVersion, counts] :
         {Case{"good", 256, 4096, 1, true},
          {"reads down to version 0", 256, 4096, 0, true},
          {"for later readers", 256, 4096, 2, false},
          {"chunk size 0", 0, 4096, 1, false},
          {"beyond the area", 256, 4097, 1, false},
          {"smaller than the area", 256, 100, 1, true}}) {
        use({});
        putHeader(0, chunkSize, available, 1, minReadoutVersion);
        mountMemory();
        EXPECT_EQ(counts, manager->romInitialized()) << name;
    }
    // Impossible formats are refused before any write.
    flash->image.clear();
    ROM::ChunkedMemoryManager noChunks(flash.get(), 0, 4096, 0, true);
    EXPECT_THROW(noChunks.initializeRom(), ArgumentPluginException);
    ROM::ChunkedMemoryManager noRoom(flash.get(), 0, 16, 256, false);
    noRoom.initialize();
    EXPECT_FALSE(noRoom.romInitialized());
    EXPECT_THROW(noRoom.initializeRom(), ArgumentPluginException);
    EXPECT_THAT(flash->writes, IsEmpty());
}

TEST_F(ManagerTest, OtherVersionsAreReadOnly) {
    const auto refusal = [&](auto action) { return messageOf<InvalidOperationPluginException>(action); };
    for (const std::uint8_t version : {0, 3}) {
        putHeader(17, 256, 4096, version);
        putBlock(17, 12, 0, hex("AABB"));
        mountMemory();
        const auto* only = manager->getNext(nullptr);
        EXPECT_EQ(hex("AABB"), manager->read(only));
        EXPECT_EQ("Cannot allocate section - Rom version is not 1", refusal([&] { manager->allocate(1); }));
        EXPECT_EQ("Cannot write section - Rom version is not 1", refusal([&] { manager->write(only, {}); }));
        EXPECT_EQ("Cannot erase section - Rom version is not 1", refusal([&] { manager->erase(only); }));
    }
    manager->dispose();
    EXPECT_EQ("Cannot allocate section - Rom version is not 1", refusal([&] { manager->allocate(1); }));
}

TEST_F(ManagerTest, ChainRunsAwayFromTheHeader) {
    formatMemory();
    EXPECT_EQ(17u, writeBlock(pattern(246)));       // one chunk
    EXPECT_EQ(17u + 256, writeBlock(pattern(247))); // two
    ROM::ChunkedMemoryManager other(flash.get(), 0, 4096, 64, true);
    other.initialize();
    EXPECT_EQ(17u + 768, BlockProbe(*other.allocate(1)).getBlockOffset()) << "the stored chunk size rules";
    EXPECT_EQ(17u + 768, writeBlock(pattern(1)));
    EXPECT_THAT(chain(), ElementsAre(17, 273, 785));
    mountMemory();
    EXPECT_THAT(chain(), ElementsAre(17, 273, 785));
    EXPECT_EQ(pattern(247), manager->read(block(273)));

    use({0, 4096, 256, false});
    formatMemory();
    EXPECT_EQ(4079u - 256, writeBlock(pattern(246)));
    EXPECT_EQ(4079u - 512, writeBlock(pattern(1)));
    EXPECT_EQ(4079u - 1024, writeBlock(pattern(247)));
    EXPECT_THAT(chain(), ElementsAre(3823, 3567, 3055));
    mountMemory();
    EXPECT_THAT(chain(), ElementsAre(3823, 3567, 3055));
}

TEST_F(ManagerTest, EraseRelinksAndTellsTheFollower) {
    for (const bool atStart : {true, false}) {
        use({0, 4096, 256, atStart});
        formatMemory();
        const auto first = writeBlock(pattern(1)), second = writeBlock(pattern(2)),
                   third = writeBlock(pattern(3));
        const auto* last = block(third);
        EXPECT_EQ(last, manager->erase(block(second)));
        EXPECT_THAT(chain(), ElementsAre(first, third));
        EXPECT_EQ(last, manager->erase(block(first)));
        EXPECT_EQ(third, manager->getHeader()->getFirstBlockAddress());
        mountMemory();
        EXPECT_THAT(chain(), ElementsAre(third));
        EXPECT_EQ(nullptr, manager->erase(block(third)));
        EXPECT_EQ(0u, manager->getHeader()->getFirstBlockAddress());
        EXPECT_EQ(first, writeBlock(pattern(9)));
    }
}

TEST_F(ManagerTest, FirstGapThatFitsIsTaken) {
    for (const bool atStart : {true, false}) {
        use({0, 4096, 256, atStart});
        formatMemory();
        std::vector<std::uint32_t> at;
        for (unsigned i = 0; i < 5; ++i)
            at.push_back(writeBlock(pattern(i)));
        manager->erase(block(at[2]));
        manager->erase(block(at[3]));
        EXPECT_EQ(at[2], writeBlock(pattern(2))); // the header's end of the hole
        manager->erase(block(at[0]));
        EXPECT_EQ(at[0], writeBlock(pattern(3)));                                 // beside the header
        EXPECT_EQ(atStart ? at[4] + 256 : at[4] - 768, writeBlock(pattern(600))); // too big for the hole
        mountMemory();
        EXPECT_EQ(5u, chain().size());
        EXPECT_EQ(pattern(600), manager->read(block(chain().back())));
    }
}

TEST_F(ManagerTest, FullAreaAllocatesNothing) {
    use({0, 17 + 2 * 256, 256, true});
    formatMemory();
    writeBlock(pattern(1));
    EXPECT_EQ(nullptr, manager->allocate(247));
    EXPECT_NE(nullptr, manager->allocate(246));
    for (const std::uint32_t size : {0xFFFFFF00u, 0xFFFFFFF6u, 0xFFFFFFFFu})
        EXPECT_EQ(nullptr, manager->allocate(size));
    use({0, 4096, 1, true});
    formatMemory();
    EXPECT_EQ(0xFFFFFFFFu, BlockProbe(*manager->allocate(0xFFFFFFF5)).getAllocatedSize());
    EXPECT_EQ(nullptr, manager->allocate(0xFFFFFFF6)) << "one byte more than 32 bits count";
}

TEST_F(ManagerTest, UnknownAndForgottenBlocksAreRefused) {
    formatMemory();
    const auto* first = manager->allocate(600);
    EXPECT_EQ(17u, BlockProbe(*first).getBlockOffset());
    const auto* second = manager->allocate(5);
    EXPECT_EQ(17u, BlockProbe(*second).getBlockOffset());
    EXPECT_EQ(15u, BlockProbe(*second).getAllocatedSize());
    EXPECT_EQ(1u, flash->writes.size()) << "allocating writes nothing";
    EXPECT_THAT(manager->getBlockMap(), IsEmpty());
    const auto address = writeBlock(pattern(1));
    const BlockProbe foreign(11, 0);
    const std::function<void()> refused[] = {
        [&] { manager->getNext(&foreign); },  [&] { manager->read(&foreign); },
        [&] { manager->erase(&foreign); },    [&] { manager->write(&foreign, {}); },
        [&] { manager->write(nullptr, {}); }, [&] { manager->getMaximumUsableSize(nullptr); }};
    for (const auto& operation : refused)
        EXPECT_EQ("invalid block", messageOf<ArgumentPluginException>(operation));
    const std::function<void()> forgets[] = {[&] { manager->erase(block(address)); }, [&] { mountMemory(); },
                                             [&] { EXPECT_EQ(nullptr, manager->allocate(0xFFFFFFFF)); }};
    for (const auto& forget : forgets) {
        const auto* pending = manager->allocate(5);
        forget();
        EXPECT_THROW(manager->write(pending, pattern(5)), ArgumentPluginException);
    }
}

TEST_F(ManagerTest, DamagedChainsAreCut) {
    using Case = std::tuple<const char*, std::uint32_t, std::size_t, const char*>;
    const char* cyclic = "cyclic references detected";
    const char* unreadable = "couldn't parse memory block header";
    for (const auto& [name, linkOfSecond, blocks, warning] : {Case{"whole", 800, 3, ""},
                                                              {"back to the first", 17, 2, cyclic},
                                                              {"to itself", 300, 2, cyclic},
                                                              {"to no block", 1000, 2, unreadable},
                                                              {"past the area", 4096, 2, unreadable},
                                                              {"across the area's end", 4090, 2, unreadable},
                                                              {"far away", 0xFFFFFFFF, 2, unreadable}}) {
        LogCapture log;
        use({});
        putHeader(17, 256, 4096);
        putBlock(17, 20, 300);
        putBlock(300, 20, linkOfSecond);
        putBlock(800, 20, 0);
        mountMemory();
        EXPECT_EQ(blocks, manager->getBlockMap().size()) << name;
        EXPECT_THAT(log.text(), HasSubstr(warning)) << name;
    }
}

TEST_F(ManagerTest, BlocksMayOverlapButNotWithoutEnd) {
    for (const std::size_t count : {16u, 100u}) {
        LogCapture log;
        use({});
        putHeader(32, 256, 4096);
        for (std::uint32_t i = 0; i < count; ++i) // each reaches to the end of the area
            putBlock(32 + 10 * i, 4096 - 32 - 10 * i, i + 1 < count ? 32 + 10 * (i + 1) : 0);
        mountMemory();
        EXPECT_EQ(16u, manager->getBlockMap().size()) << count;
        EXPECT_EQ(count == 16, log.text().find("too many overlapping blocks") == std::string::npos);
    }
}

TEST_F(ManagerTest, NothingIsReadOutsideTheArea) {
    use({1000, 1000, 100, true});
    putHeader(1200, 100, 1000);
    putBlock(1200, 800, 1300);
    putBlock(1300, 701, 0);
    mountMemory();
    EXPECT_EQ(790u, manager->read(block(1200)).size());
    EXPECT_THAT(manager->read(block(1300)), IsEmpty());
    putHeader(500, 100, 1000); // on the flash, but before the area
    putBlock(500, 20, 0);
    mountMemory();
    EXPECT_EQ(nullptr, manager->getNext(nullptr));
}

TEST_F(ManagerTest, ErasingInACycleLeavesNoLinkToTheBlock) {
    struct Case {
        std::uint32_t second, third; ///< after the block at 1000; the third leads back to the second
        std::uint32_t erased, left;
    };
    for (const Case& c : {Case{2000, 3000, 2000, 3000}, {3000, 2000, 3000, 2000}}) {
        use({});
        putHeader(1000, 256, 4096);
        putBlock(1000, 20, c.second);
        putBlock(c.second, 20, c.third);
        putBlock(c.third, 20, c.second);
        mountMemory();
        EXPECT_EQ(block(c.left), manager->erase(block(c.erased)));
        mountMemory();
        EXPECT_EQ(2u, manager->getBlockMap().size());
        EXPECT_EQ(1u, manager->getBlockMap().count(c.left));
    }
    use({});
    putHeader(2000, 256, 4096);
    putBlock(2000, 20, 1000); // descends, although the header is at the start
    putBlock(1000, 20, 0);
    mountMemory();
    manager->erase(block(1000));
    EXPECT_EQ(2000u, manager->getHeader()->getFirstBlockAddress());
    use({});
    putHeader(1000, 256, 4096);
    putBlock(1000, 20, 1000);
    mountMemory();
    EXPECT_EQ(nullptr, manager->erase(block(1000)));
    EXPECT_EQ(1u, flash->writes.size()) << "the management header, and not the block itself";
    mountMemory();
    EXPECT_THAT(manager->getBlockMap(), IsEmpty());
}

TEST_F(ManagerTest, AWriteThatReadsBackWrongIsNotRemembered) {
    formatMemory();
    const auto address = writeBlock(pattern(100));
    for (const auto fault : {FlashFault::Ignored, FlashFault::Short, FlashFault::OtherData}) {
        flash->failWrite(0, fault);
        EXPECT_EQ("Failed to write data to ROM",
                  messageOf<IOPluginException>([&] { manager->write(block(address), pattern(50, 7)); }));
        EXPECT_EQ(110u, allocatedSize(address));
        const auto* fresh = manager->allocate(10);
        flash->failWrite(0, fault);
        EXPECT_THROW(manager->write(fresh, pattern(10)), IOPluginException);
        EXPECT_THAT(chain(), ElementsAre(address));
        flash->heal();
    }
    // The write that links or unlinks: of a block's header, then of the management header.
    for (const bool isFirst : {false, true}) {
        use({});
        formatMemory();
        const auto first = isFirst ? 0 : writeBlock(pattern(100));
        const auto* fresh = manager->allocate(10);
        flash->failWrite(1, FlashFault::Ignored);
        EXPECT_THROW(manager->write(fresh, pattern(10)), IOPluginException);
        EXPECT_THROW(manager->read(fresh), ArgumentPluginException);
        EXPECT_EQ(first, manager->getHeader()->getFirstBlockAddress());
        EXPECT_EQ(isFirst ? 0u : 1u, chain().size());
        const auto last = writeBlock(pattern(10)); // takes the same place
        flash->failWrite(0, FlashFault::Ignored);
        EXPECT_THROW(manager->erase(block(last)), IOPluginException);
        EXPECT_EQ(pattern(10), manager->read(block(last)));
        EXPECT_EQ(isFirst ? last : first, manager->getHeader()->getFirstBlockAddress());
        EXPECT_EQ(isFirst ? 1u : 2u, chain().size());
    }
}

// What the format does and keeps doing, although it may cost a neighbour.

TEST_F(ManagerTest, ExactMultipleIsCreditedOneChunkMoreAndTheLowestBlockCountsAsTheFirst) {
    formatMemory();
    const auto address = writeBlock(pattern(246));
    EXPECT_EQ(256u, allocatedSize(address));
    EXPECT_EQ(502u, manager->getMaximumUsableSize(block(address)));
    EXPECT_EQ(246u, manager->getMaximumUsableSize(block(writeBlock(pattern(245)))));
    use({0, 4096, 256, false});
    formatMemory();
    const auto beside = writeBlock(pattern(1));
    writeBlock(pattern(600)); // three chunks, and the lowest: the room beside wraps to almost 4 GiB
    EXPECT_EQ(beside, BlockProbe(*manager->allocate(1)).getBlockOffset());
}

TEST_F(ManagerTest, LastGapEndsAtTheSizeTakenAsAnAddress) {
    use({2048, 4096, 256, true});
    formatMemory();
    EXPECT_EQ(2048u + 17, writeBlock(pattern(1)));
    EXPECT_EQ(0u, writeBlock(pattern(2000))) << "reaches past address 4096, which is inside the area";
    EXPECT_NE(0u, writeBlock(pattern(1500)));
    use({8192, 4096, 256, true}); // the gap ends before it begins and holds nothing
    formatMemory();
    writeBlock(pattern(1));
    EXPECT_EQ(0u, writeBlock(pattern(1)));
    use({0, 300, 256, true}); // the first block is placed without asking for room
    formatMemory();
    EXPECT_EQ(17u, BlockProbe(*manager->allocate(1000)).getBlockOffset());
}

TEST_F(ManagerTest, ChunksAreCountedInSixteenBitsAndAnOverwrittenBlockNeverComesToMeanAnother) {
    use({0, 200000, 1, true});
    formatMemory();
    writeBlock(pattern(65536 + 20 - 10)); // counts as 20 chunks
    EXPECT_EQ(17u + 20, BlockProbe(*manager->allocate(1)).getBlockOffset());
    use({0, 200000, 1, true});
    formatMemory();
    const auto address = writeBlock(pattern(65536 - 10)); // counts as no chunks at all
    const auto* overwritten = block(address);
    EXPECT_EQ(address, writeBlock(pattern(1)));
    for (int i = 0; i < 8; ++i)
        writeBlock(pattern(1));
    EXPECT_EQ("invalid block", messageOf<ArgumentPluginException>([&] { manager->read(overwritten); }));
}

} // namespace
} // namespace Zentara::TestSupport
