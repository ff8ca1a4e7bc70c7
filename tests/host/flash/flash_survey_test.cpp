#include <functional>

#include <gmock/gmock.h>

#include <zentara/host/flash_survey.h>
#include <zentara/rom/section.h>
#include <zentara/utils/crc.h>

#include "host/flash/storage.h"

namespace Zentara::Host {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

std::uint8_t high(std::uint32_t value) { return static_cast<std::uint8_t>(value >> 8); }
std::uint8_t low(std::uint32_t value) { return static_cast<std::uint8_t>(value); }

/// With their checksum behind them.
Bytes sealed(Bytes bytes) {
    const unsigned crc = Utils::Crc16::compute(bytes.data(), static_cast<unsigned>(bytes.size()), 0);
    bytes.insert(bytes.end(), {high(crc), low(crc)});
    return bytes;
}

/// An image that a test builds with the library and then damages.
class FlashSurveyTest : public testing::Test {
protected:
    static constexpr std::uint32_t firstBlock = 100 + 17;
    static constexpr std::uint32_t chunk = 64;

    FlashSurveyTest() {
        Storage storage(image, image.area());
        storage.container.initialize();
        storage.container.initializeRom();
        for (std::uint16_t uid = 1; uid <= 3; ++uid)
            set(uid, 4, fromHex("2001080000000506").value());
    }

    void set(std::uint16_t uid, std::uint8_t type, const Bytes& data) {
        change([&](ROM::Container& container) {
            container.set(uid, static_cast<ROM::ContainerSectionType>(type), ROM::Section::FLAG_WRITABLE,
                          data);
        });
    }
    void change(const std::function<void(ROM::Container&)>& step) {
        Storage storage(image, image.area());
        storage.container.initialize();
        step(storage.container);
    }

    void put(std::uint32_t address, const Bytes& bytes) { image.write(address, bytes); }
    /// Repairs the checksum of the `length` bytes before it.
    void seal(std::uint32_t address, std::uint32_t length) {
        put(address, sealed(image.read(address, length)));
    }
    void link(std::uint32_t block, std::uint32_t next) {
        put(block + 4, {0, 0, high(next), low(next)});
        seal(block, 8);
    }
    static std::uint32_t block(unsigned index) { return firstBlock + index * chunk; }
    static std::uint32_t section(unsigned index) { return block(index) + 10; }

    [[nodiscard]] std::vector<std::pair<FindingKind, std::uint32_t>> faults() const {
        std::vector<std::pair<FindingKind, std::uint32_t>> list;
        const FlashSurvey survey = surveyOf(image);
        for (const Finding& finding : survey.findings)
            if (finding.isFault)
                list.emplace_back(finding.kind, finding.address);
        return list;
    }

    FlashImage image{FlashArea{100, 1024, chunk, true}};
};

TEST_F(FlashSurveyTest, FindsNothingWrongWithWhatTheLibraryWrites) {
    EXPECT_THAT(faults(), IsEmpty());
    const FlashSurvey survey = surveyOf(image);
    EXPECT_THAT(survey.findings, IsEmpty());
    ASSERT_EQ(survey.blocks.size(), 4U);
    EXPECT_EQ(survey.blocks[2].section->uid, 2);
    EXPECT_EQ(survey.freeSpace.gaps.size(), 1U);

    change([](ROM::Container& container) { container.erase(2); });
    const FlashSurvey erased = surveyOf(image);
    EXPECT_FALSE(erased.isFaulty());
    ASSERT_EQ(erased.unreachable.size(), 1U) << "what was erased is still there";
    EXPECT_EQ(erased.unreachable[0].address, section(2));
    EXPECT_EQ(erased.freeSpace.gaps.size(), 2U);
}

/// The library uses all the room that the survey counts, and no more.
TEST_F(FlashSurveyTest, CountsTheRoomThatTheLibraryUses) {
    for (const FlashArea& area : {FlashArea{100, 1024, chunk, true}, FlashArea{0, 1000, chunk, true},
                                  FlashArea{100, 1024, chunk, false}}) {
        SCOPED_TRACE(area.start);
        FlashImage flash(area);
        Storage storage(flash, area);
        storage.container.initialize();
        storage.container.initializeRom();
        for (std::uint16_t uid = 1; const std::uint64_t room = surveyOf(flash).freeSpace.bytes; ++uid) {
            storage.container.set(uid, ROM::ContainerSectionType::Diagnostic, 1, Bytes(10, 1));
            ASSERT_EQ(surveyOf(flash).freeSpace.bytes, room - chunk);
        }
        EXPECT_THROW(storage.container.set(999, ROM::ContainerSectionType::Diagnostic, 1, Bytes(10, 1)),
                     Plugin::IOPluginException);
    }
}

TEST_F(FlashSurveyTest, NamesEachDamageWithItsPlace) {
    using Kind = FindingKind;
    using Faults = std::vector<std::pair<FindingKind, std::uint32_t>>;
    const FlashImage whole = image;
    const auto header = [this](std::uint32_t offset, Bytes bytes) {
        return [=, this] {
            put(100 + offset, bytes);
            seal(100, 15);
            put(100 + 17, Bytes(1007, 0));
        };
    };
    const auto blockHeader = [this](unsigned index, Bytes bytes) {
        return [=, this] {
            put(block(index), bytes);
            seal(block(index), 8);
        };
    };
    const auto sectionHeader = [this](std::uint32_t offset, Bytes bytes) {
        return [=, this] {
            put(section(2) + offset, bytes);
            seal(section(2), 9);
        };
    };
    const struct {
        const char* what;
        std::function<void()> damage;
        Faults faults;
    } rows[] = {
        {"erased header",
         [&] { put(100, Bytes(17, 0xFF)); },
         {{Kind::NotFormatted, 100},
          {Kind::Unreachable, block(0)},
          {Kind::Unreachable, section(1)},
          {Kind::Unreachable, section(2)},
          {Kind::Unreachable, section(3)}}},
        {"nothing but zeros", [&] { put(100, Bytes(1024, 0)); }, {{Kind::ManagementHeader, 100}}},
        {"strategy", header(0, {2}), {{Kind::ManagementHeader, 100}}},
        {"a readout version to come", header(2, {2}), {{Kind::ManagementHeader, 100}}},
        {"chunk size 0", header(7, Bytes(4, 0)), {{Kind::ManagementHeader, 100}}},
        {"more than the area", header(3, Bytes(4, 0xFF)), {{Kind::ManagementHeader, 100}}},
        {"no container", header(11, Bytes(4, 0)), {{Kind::ContainerHeader, 100}}},
        {"first link outside", header(11, Bytes(4, 0xFF)), {{Kind::LinkOutside, 100}}},
        {"container header", [&] { put(section(0), {9}); }, {{Kind::ContainerHeader, block(0)}}},
        {"block header",
         [&] { put(block(2), {1}); },
         {{Kind::BlockHeader, block(2)}, {Kind::Unreachable, section(2)}, {Kind::Unreachable, section(3)}}},
        {"block of 9 bytes",
         blockHeader(3, {0, 0, 0, 9}),
         {{Kind::BlockHeader, block(3)}, {Kind::Unreachable, section(3)}}},
        {"block of 4 GB in the middle",
         blockHeader(2, Bytes(4, 0xFF)),
         {{Kind::BlockOutside, block(2)}, {Kind::Unreachable, section(2)}}},
        {"a damaged section behind a broken link",
         [&] {
             put(block(1), {1});
             put(section(2), {0});
         },
         {{Kind::BlockHeader, block(1)},
          {Kind::Unreachable, section(1)},
          {Kind::Unreachable, block(2)},
          {Kind::Unreachable, section(3)}}},
        {"link outside", [&] { link(block(3), 2000); }, {{Kind::LinkOutside, block(3)}}},
        {"cycle", [&] { link(block(3), block(1)); }, {{Kind::Cycle, block(3)}}},
        {"a step back",
         [&] {
             link(block(0), block(2));
             link(block(2), block(1));
             link(block(1), block(3));
         },
         {{Kind::ChainOrder, block(1)}}},
        {"overlap", blockHeader(1, {0, 0, 0, 80}), {{Kind::Overlap, block(2)}}},
        {"section marker", [&] { put(section(2), {0}); }, {{Kind::SectionHeader, section(2)}}},
        {"section header", [&] { put(section(2) + 6, {0}); }, {{Kind::SectionHeader, section(2)}}},
        {"section length", sectionHeader(1, {0, 0, 1, 0}), {{Kind::SectionHeader, section(2)}}},
        {"section length 0", sectionHeader(1, {0, 0, 0, 0}), {{Kind::SectionHeader, section(2)}}},
        {"section data", [&] { put(section(2) + 12, {0x55}); }, {{Kind::SectionData, section(2)}}},
        {"uid 0", sectionHeader(7, {0, 0}), {{Kind::ZeroUid, section(2)}}},
        {"the same uid twice", sectionHeader(7, {0, 1}), {{Kind::DuplicateUid, section(2)}}},
        {"a record too short",
         [&] { set(2, 4, fromHex("20010700000005").value()); },
         {{Kind::DamagedRecord, section(2)}}},
        {"a text without an end",
         [&] { set(2, 5, fromHex("4401110000000001000000020302414243").value()); },
         {{Kind::DamagedRecord, section(2)}}},
        {"a record of length 0",
         [&] { set(2, 4, fromHex("200100000000").value()); },
         {{Kind::DamagedRecord, section(2)}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        image = whole;
        row.damage();
        EXPECT_EQ(faults(), row.faults);
    }
}

TEST_F(FlashSurveyTest, NotesWhatIsUnusualWithoutCallingItWrong) {
    set(2, 99, {1, 2, 3});
    set(3, 4, fromHex("6301060000002002080000000506").value());
    const FlashSurvey survey = surveyOf(image);
    EXPECT_FALSE(survey.isFaulty());
    EXPECT_THAT(survey.findings, ElementsAre(Field(&Finding::kind, FindingKind::UnknownType),
                                             Field(&Finding::kind, FindingKind::UnknownRecord),
                                             Field(&Finding::kind, FindingKind::OtherVersion)));
}

/// Each header claims all that follows: to check them one by one would take the square of the image.
TEST(FlashSurveyTimeTest, EndsSoonWhereEveryHeaderClaimsTheRest) {
    constexpr std::uint32_t size = 8U << 20;
    Bytes headers;
    while (headers.size() + 32 < size) {
        const auto rest = static_cast<std::uint32_t>(size - headers.size());
        const Bytes header = sealed({0xA5, 0, low(rest >> 16), high(rest), low(rest), 4, 1, 0, 1});
        headers.insert(headers.end(), header.begin(), header.end());
    }
    headers.resize(size);
    EXPECT_TRUE(surveyOf(FlashImage({0, size, 256, true}, headers)).isFaulty());
}

/// Blocks inside one another are followed as far as the library follows them.
TEST(FlashSurveyTimeTest, CutsAChainThatClaimsTheAreaOverAndOver) {
    constexpr std::uint32_t size = 4096;
    FlashImage image({0, size, 16, true});
    const auto put = [&](std::uint32_t address, const Bytes& bytes) { image.write(address, sealed(bytes)); };
    put(0, {1, 1, 1, 0, 0, high(size), low(size), 0, 0, 0, 16, 0, 0, 0, 17});
    for (std::uint32_t at = 17; at + 40 < size; at += 20)
        put(at, {0, 0, high(size - at), low(size - at), 0, 0, high(at + 20), low(at + 20)});
    put(27, {1, 1});
    const FlashSurvey survey = surveyOf(image);
    Storage storage(image, image.area());
    storage.container.initialize();
    EXPECT_EQ(survey.blocks.size(), storage.manager.getBlockMap().size());
    EXPECT_THAT(survey.findings,
                Contains(Field(&Finding::text, HasSubstr("claim the area more than 16 times"))));
}

TEST_F(FlashSurveyTest, FindsEveryCutOfAnImage) {
    const FlashImage whole = image;
    for (std::uint32_t size = 0; size < 1024; size += 7) {
        const Bytes& bytes = whole.bytes();
        const FlashImage cut(FlashArea{100, size, chunk, true},
                             Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_TRUE(surveyOf(cut).isFaulty()) << size;
    }
}

} // namespace
} // namespace Zentara::Host
