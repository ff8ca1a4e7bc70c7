// How much a storage survives: power cuts, failing transfers, flipped bits and missing ends. The figures are
// printed.
#include <cstdio>
#include <random>

#include <zentara/rom/section.h>
#include <zentara/utils/environment_variable.h>

#include "rom/rom_fixture.h"
#include "support/stride.h"

namespace Zentara::TestSupport {
namespace {

/// Changes to a storage, at random but the same for the same seed, leaving out those that a careful writer
/// leaves out.
class Workload {
public:
    Workload(const Area& where, unsigned seed)
        : area(where), random(seed), flash(where.start + where.size), storage(flash, where) {
        storage.container.initialize();
        storage.container.initializeRom();
    }

    /// The next change that does what it should. To be given to apply().
    Change next() {
        for (;;) {
            const Change change = draw();
            if (rehearse(flash.image, area, model, change))
                return change;
        }
    }

    Area area;
    std::mt19937 random;
    SimulatedFlash flash;
    Storage storage;
    Model model;

private:
    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random() % limit); }

    Change draw() {
        const auto uid = static_cast<std::uint16_t>(1 + below(9));
        if (model.count(uid) != 0 && below(4) == 0)
            return {uid, true, {}};
        return {uid, false, pattern(below(90), static_cast<unsigned>(random()))};
    }
};

/// What a write is for, as far as a power cut in it matters.
enum WriteKind { FreshBlock, LinkOfBlock, ManagementHeader, InPlace, WRITE_KINDS };
/// What a mount after a cut finds, from best to worst.
enum Outcome { Whole, ChangedSectionLost, OthersLost, AllLost, WrongBytes, OUTCOMES };

struct Figures {
    std::size_t counts[WRITE_KINDS][OUTCOMES] = {};
    std::size_t total = 0;

    void print(std::size_t writes) const {
        std::printf("%zu cut images of %zu writes: whole, own lost, others, all lost, wrong; of blocks not "
                    "linked yet, links in block "
                    "headers, management headers, blocks in place\n",
                    total, writes);
        for (const auto& kind : counts)
            std::printf("%8zu %8zu %8zu %8zu %8zu\n", kind[0], kind[1], kind[2], kind[3], kind[4]);
    }
};

/// Cuts the power after every byte of every write of a workload, and mounts what is on the flash then.
class PowerCuts {
public:
    PowerCuts(const Area& area, unsigned seed)
        : work(area, seed), image(work.flash.image), cutFlash(image), cut(cutFlash, area) {}

    void run(std::size_t changes, Figures& into) {
        for (std::size_t i = 0; i < changes; ++i)
            step(into);
    }

    std::size_t writes = 0;

private:
    void step(Figures& into) {
        const Change change = work.next();
        const auto blocks = work.storage.manager.getBlockMap();
        const Model before = work.model;
        work.flash.writes.clear();
        apply(work.storage.container, change);
        apply(work.model, change);
        for (const auto& write : work.flash.writes)
            cutEveryByte(write, kindOf(write, blocks), change.uid, before, into);
        EXPECT_EQ(work.flash.image, image);
        cut.container.initialize();
        EXPECT_TRUE(holds(cut.container, work.model)) << "after the last byte";
        writes += work.flash.writes.size();
    }

    WriteKind kindOf(const SimulatedFlash::Write& write,
                     const std::map<std::uint32_t, const ROM::MemoryBlockHeader*>& blocks) const {
        if (write.address == work.area.headerAddress())
            return ManagementHeader;
        if (write.after.size() == ROM::MemoryBlockHeader::SIZE)
            return LinkOfBlock;
        return &write == &work.flash.writes.front() && blocks.count(write.address) != 0 ? InPlace
                                                                                        : FreshBlock;
    }

    void cutEveryByte(const SimulatedFlash::Write& write, WriteKind kind, std::uint16_t uid,
                      const Model& before, Figures& into) {
        cut.container.initialize();
        const auto uidsBefore = cut.container.getSectionUIDs();
        for (std::size_t i = 0; i < write.after.size(); ++i) {
            image[write.address + i] = write.after[i];
            cut.container.initialize();
            const Outcome outcome = judge(uid, before);
            ++into.counts[kind][outcome];
            ++into.total;
            if (kind == FreshBlock) {
                ASSERT_EQ(uidsBefore, cut.container.getSectionUIDs()) << "before the link nothing may change";
            }
        }
    }

    Outcome judge(std::uint16_t uid, const Model& before) {
        if (!cut.container.romInitialized())
            return AllLost;
        std::size_t others = 0;
        for (const std::uint16_t found : cut.container.getSectionUIDs()) {
            const Bytes& data = cut.container.getSection(found)->getSerializedData();
            if (!isVersion(before, found, data) && !isVersion(work.model, found, data))
                return WrongBytes;
            others += found != uid;
        }
        if (others != before.size() - before.count(uid))
            return OthersLost;
        const bool mayBeAbsent = before.count(uid) == 0 || work.model.count(uid) == 0;
        return mayBeAbsent || cut.container.getSection(uid) ? Whole : ChangedSectionLost;
    }

    static bool isVersion(const Model& model, std::uint16_t uid, const Bytes& data) {
        const auto found = model.find(uid);
        return found != model.end() && found->second == data;
    }

    Workload work;
    Bytes image; ///< the flash as the cut leaves it
    ImageFlash cutFlash;
    Storage cut;
};

TEST(RomReliability, PowerCutAfterEveryByteOfEveryWrite) {
    const auto wanted = static_cast<std::size_t>(
        Utils::EnvironmentVariable("ZENTARA_ROM_CUTS").getIntValue(200'000 / static_cast<int>(stride)));
    Figures figures;
    std::size_t writes = 0;
    unsigned seed = 0;
    for (; seed < 8 || figures.total < wanted; ++seed) {
        PowerCuts cuts({0, 2048, seed % 4 < 2 ? 32u : 100u, seed % 2 == 0}, seed);
        cuts.run(300, figures);
        writes += cuts.writes;
        if (testing::Test::HasFatalFailure())
            return;
    }
    std::printf("%u workloads, ", seed);
    figures.print(writes);
    EXPECT_EQ(0u, figures.counts[FreshBlock][WrongBytes] + figures.counts[LinkOfBlock][WrongBytes] +
                      figures.counts[ManagementHeader][WrongBytes]);
    // A torn rewrite that keeps its length passes for good when 16 bits of checksum happen to match.
    EXPECT_LE(figures.counts[InPlace][WrongBytes], 3 + figures.total / 20000);
}

/// One transfer of a scenario goes wrong, whichever it is.
class FaultWalk : public testing::TestWithParam<FlashFault> {
protected:
    const Area area{0, 2048, 64, true};
    const std::vector<Change> scenario = {
        {1, false, pattern(30, 1)}, {2, false, pattern(30, 2)}, {3, false, pattern(100, 3)},
        {1, false, pattern(20, 4)}, {2, false, pattern(90, 5)}, {3, true, {}},
        {4, false, pattern(10, 6)},
    };

    /// Runs the scenario up to the change in which the fault hits, and checks what is left. False when the
    /// fault lies behind the last transfer.
    bool run(std::size_t n, bool inRead) {
        SimulatedFlash flash(area.size);
        Storage storage(flash, area);
        storage.container.initialize();
        storage.container.initializeRom();
        if (inRead)
            flash.failRead(n, GetParam());
        else
            flash.failWrite(n, GetParam());
        const std::size_t faultAt = n + (inRead ? flash.readCount : flash.writeCount);
        Model model;
        for (const Change& change : scenario) {
            const Model before = model;
            apply(model, change);
            const bool told = messageOf<IOPluginException>([&] { apply(storage.container, change); }) !=
                              "nothing was thrown";
            if ((inRead ? flash.readCount : flash.writeCount) <= faultAt)
                continue;
            flash.heal();
            if (told)
                checkMemory(storage.container, before, change.uid);
            checkFlash(flash, before, model, told, inRead);
            return true;
        }
        return false;
    }

private:
    void checkMemory(ROM::Container& container, const Model& before, std::uint16_t uid) {
        for (const auto& [known, data] : before) {
            const ROM::Section* section = container.getSection(known);
            EXPECT_TRUE(section ? section->getSerializedData() == data : known == uid)
                << "memory keeps what was verified last, in section " << known;
        }
    }

    void checkFlash(SimulatedFlash& flash, const Model& before, const Model& after, bool told, bool inRead) {
        Storage again(flash, area);
        again.container.initialize();
        for (const std::uint16_t uid : again.container.getSectionUIDs()) {
            const Bytes data = again.container.get(uid);
            const bool old = before.count(uid) != 0 && before.at(uid) == data;
            const bool fresh = after.count(uid) != 0 && after.at(uid) == data;
            EXPECT_TRUE(old || fresh) << "wrong bytes in section " << uid;
        }
        if (!told) {
            EXPECT_TRUE(holds(again.container, after)) << "success was told";
        }
        // Only what was half written may tear the chain.
        const bool torn = !inRead && (GetParam() == FlashFault::Short || GetParam() == FlashFault::OtherData);
        if (!torn) {
            EXPECT_TRUE(again.container.romInitialized());
            EXPECT_GE(again.container.getSectionUIDs().size() + 1, before.size());
        }
    }
};

TEST_P(FaultWalk, AnyTransferMayFail) {
    for (const bool inRead : {true, false}) {
        std::size_t n = 0;
        while (run(n, inRead))
            ++n;
        EXPECT_EQ(13u, n);
    }
}

TEST_P(FaultWalk, AnyReadOfAMountMayFail) {
    SimulatedFlash flash(area.size);
    Storage storage(flash, area);
    const Model model = fill(storage, 5, 40, 0);
    flash.readCount = 0;
    storage.container.initialize();
    const std::size_t reads = flash.readCount;
    for (std::size_t n = 0; n < reads; ++n) {
        flash.failRead(n, GetParam());
        if (GetParam() == FlashFault::Throws) {
            EXPECT_THROW(storage.container.initialize(), Plugin::IOPluginException);
            EXPECT_FALSE(storage.container.romInitialized()) << "half a storage must not be written to";
            EXPECT_THAT(storage.container.getSectionUIDs(), testing::IsEmpty());
            EXPECT_LE(storage.manager.getBlockMap().size() % (model.size() + 1), 0u) << "all blocks or none";
        } else {
            storage.container.initialize();
        }
        for (const std::uint16_t uid : storage.container.getSectionUIDs())
            EXPECT_EQ(model.at(uid), storage.container.get(uid));
        flash.heal();
        storage.container.initialize();
        EXPECT_TRUE(holds(storage.container, model));
    }
}

std::string faultName(const testing::TestParamInfo<FlashFault>& parameter) {
    constexpr const char* names[] = {"Throws", "Short", "Ignored", "OtherData"};
    return names[static_cast<int>(parameter.param)];
}

INSTANTIATE_TEST_SUITE_P(Rom, FaultWalk,
                         testing::Values(FlashFault::Throws, FlashFault::Short, FlashFault::Ignored,
                                         FlashFault::OtherData),
                         faultName);

/// A 16 KiB image with sections of all lengths.
class DamagedImage : public testing::Test {
protected:
    DamagedImage() {
        Storage storage(flash, area);
        model = fill(storage, 24, 0, 20);
    }

    /// How many sections the storage still has; all of them must be right.
    std::size_t rightSections(Storage& storage) {
        storage.container.initialize();
        const auto uids = storage.container.getSectionUIDs();
        for (const std::uint16_t uid : uids) {
            const auto wanted = model.find(uid);
            if (wanted == model.end() ||
                wanted->second != storage.container.getSection(uid)->getSerializedData())
                ADD_FAILURE() << "wrong bytes in section " << uid;
        }
        return uids.size();
    }

    const Area area{0, 16384, 64, true};
    Bytes image = Bytes(16384, 0xFF);
    ImageFlash flash{image};
    Model model;
};

TEST_F(DamagedImage, EveryFlippedBitIsHarmlessOrSeen) {
    Storage storage(flash, area);
    std::size_t harmless = 0, one = 0, more = 0, all = 0;
    for (std::size_t bit = 0; bit < image.size() * 8; bit += stride) {
        const auto mask = static_cast<std::uint8_t>(1u << bit % 8);
        image[bit / 8] ^= mask;
        const std::size_t right = rightSections(storage);
        image[bit / 8] ^= mask;
        ++(right == model.size() ? harmless : right + 1 == model.size() ? one : right != 0 ? more : all);
        ASSERT_FALSE(HasFailure()) << "bit " << bit;
    }
    std::printf(
        "%zu bits flipped: %zu harmless, %zu cost one section, %zu several, %zu all; wrong bytes never\n",
        harmless + one + more + all, harmless, one, more, all);
    EXPECT_GT(one, 24u * 8 * 20 / stride);
}

} // namespace
} // namespace Zentara::TestSupport
