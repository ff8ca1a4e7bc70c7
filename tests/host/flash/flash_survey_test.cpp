#include <functional>

#include <gmock/gmock.h>

#include <zentara/host/flash_survey.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/rom/section.h>
#include <zentara/utils/crc.h>

#include "host/flash/storage.h"

namespace Zentara::Host {
namespace {

using testing::Field;
using testing::HasSubstr;

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

    /// Repairs the checksum of the `length` bytes before it.
    void seal(std::uint32_t address, std::uint32_t length) {
        image.write(address, sealed(image.read(address, length)));
    }
    void link(std::uint32_t block, std::uint32_t next) {
        image.write(block + 4, {0, 0, high(next), low(next)});
        seal(block, 8);
    }
    static std::uint32_t block(unsigned index) { return firstBlock + index * chunk; }
    static std::uint32_t section(unsigned index) { return block(index) + 10; }

    /// "KIND PLACE KIND PLACE": the place of block 2 is "b2", that of the section in it "s2", others are addresses.
    [[nodiscard]] std::string faults() const {
        std::string text;
        const FlashSurvey survey = surveyOf(image);
        for (const Finding& finding : survey.findings) {
            std::string place = std::to_string(finding.address);
            for (unsigned index = 0; index < 4; ++index) {
                if (finding.address == block(index) || finding.address == section(index))
                    place = (finding.address == block(index) ? "b" : "s") + std::to_string(index);
            }
            if (finding.isFault)
                text += (text.empty() ? "" : " ") + std::string(findingKindName(finding.kind)) + " " + place;
        }
        return text;
    }

    FlashImage image{FlashArea{100, 1024, chunk, true}};
};

TEST_F(FlashSurveyTest, FindsNothingWrongWithWhatTheLibraryWrites) {
    const FlashSurvey survey = surveyOf(image);
    EXPECT_THAT(survey.findings, testing::IsEmpty());
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
    const FlashImage whole = image;
    // How many bytes the checksum of a header is over, if it is to be right.
    constexpr std::uint32_t management = 15;
    constexpr std::uint32_t ofBlock = 8;
    constexpr std::uint32_t ofSection = 9;
    const auto put = [this](std::uint32_t start, std::uint32_t offset, Bytes bytes,
                            std::uint32_t length = 0) {
        return [=, this] {
            image.write(start + offset, bytes);
            if (length != 0)
                seal(start, length);
            if (length == management)
                image.write(firstBlock, Bytes(1007, 0));
        };
    };
    const std::tuple<const char*, std::function<void()>, const char*> rows[]{
        {"erased header", put(100, 0, Bytes(17, 0xFF)),
         "notFormatted 100 unreachable b0 unreachable s1 unreachable s2 unreachable s3"},
        {"nothing but zeros", put(100, 0, Bytes(1024, 0)), "managementHeader 100"},
        {"strategy", put(100, 0, {2}, management), "managementHeader 100"},
        {"a readout version to come", put(100, 2, {2}, management), "managementHeader 100"},
        {"chunk size 0", put(100, 7, Bytes(4, 0), management), "managementHeader 100"},
        {"more than the area", put(100, 3, Bytes(4, 0xFF), management), "managementHeader 100"},
        {"no container", put(100, 11, Bytes(4, 0), management), "containerHeader 100"},
        {"first link outside", put(100, 11, Bytes(4, 0xFF), management), "linkOutside 100"},
        {"container header", put(section(0), 0, {9}), "containerHeader b0"},
        {"block header", put(block(2), 0, {1}), "blockHeader b2 unreachable s2 unreachable s3"},
        {"block of 9 bytes", put(block(3), 0, {0, 0, 0, 9}, ofBlock), "blockHeader b3 unreachable s3"},
        {"block of 4 GB in the middle", put(block(2), 0, Bytes(4, 0xFF), ofBlock),
         "blockOutside b2 unreachable s2"},
        {"a damaged section behind a broken link",
         [&] {
             image.write(block(1), {1});
             image.write(section(2), {0});
         },
         "blockHeader b1 unreachable s1 unreachable b2 unreachable s3"},
        {"link outside", [&] { link(block(3), 2000); }, "linkOutside b3"},
        {"cycle", [&] { link(block(3), block(1)); }, "cycle b3"},
        {"a step back",
         [&] {
             link(block(0), block(2));
             link(block(2), block(1));
             link(block(1), block(3));
         },
         "chainOrder b1"},
        {"overlap", put(block(1), 0, {0, 0, 0, 80}, ofBlock), "overlap b2"},
        {"section marker", put(section(2), 0, {0}), "sectionHeader s2"},
        {"section header", put(section(2), 6, {0}), "sectionHeader s2"},
        {"section length", put(section(2), 1, {0, 0, 1, 0}, ofSection), "sectionHeader s2"},
        {"section length 0", put(section(2), 1, {0, 0, 0, 0}, ofSection), "sectionHeader s2"},
        {"section data", put(section(2), 12, {0x55}), "sectionData s2"},
        {"uid 0", put(section(2), 7, {0, 0}, ofSection), "zeroUid s2"},
        {"the same uid twice", put(section(2), 7, {0, 1}, ofSection), "duplicateUid s2"},
        {"a record too short", [&] { set(2, 4, fromHex("20010700000005").value()); }, "damagedRecord s2"},
        {"a text without an end", [&] { set(2, 5, fromHex("4401110000000001000000020302414243").value()); },
         "damagedRecord s2"},
        {"a record of length 0", [&] { set(2, 4, fromHex("200100000000").value()); }, "damagedRecord s2"},
    };
    for (const auto& [what, damage, expected] : rows) {
        image = whole;
        damage();
        EXPECT_EQ(faults(), expected) << what;
    }
}

TEST_F(FlashSurveyTest, NotesWhatIsUnusualWithoutCallingItWrong) {
    set(2, 99, {1, 2, 3});
    set(3, 4, fromHex("6301060000002002080000000506").value());
    const FlashSurvey survey = surveyOf(image);
    EXPECT_FALSE(survey.isFaulty());
    EXPECT_THAT(survey.findings, testing::ElementsAre(Field(&Finding::kind, FindingKind::UnknownType),
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
                testing::Contains(Field(&Finding::text, HasSubstr("claim the area more than 16 times"))));
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
