// The bytes of headers, records and strings.
#include <gmock/gmock.h>

#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/rom/container_header.h>
#include <zentara/rom/section.h>
#include <zentara/rom/serialized_data_block.h>
#include <zentara/rom/string_serialization.h>
#include <zentara/utils/crc.h>

#include "rom/rom_fixture.h"

namespace Zentara::TestSupport {
namespace {

using testing::ElementsAre;

struct RecordProbe : ROM::SerializedDataBlock {
    using SerializedDataBlock::deserialize;
};

TEST(RomFormat, BlockHeaderRefusesDamage) {
    for (const char* bytes : {"", "00000020 00000100 57", "00000020 00000100 5781", "00000009 00000000 01DC"})
        EXPECT_EQ(nullptr, BlockProbe::deserialize(hex(bytes))) << bytes;
}

TEST(RomFormat, ManagementHeaderBytes) {
    const auto bytes = hex("01 01 01 00001000 00000100 00000011 0803");
    EXPECT_EQ(bytes, ROM::ChunkedMemoryManagementHeader(1, 1, 256, 4096, 17).serialize());
    for (auto damaged :
         {hex("01 01 01 00001000 00000100 00000011 08"), hex("02 01 01 00001000 00000100 00000011 0803"),
          hex("01 01 01 00001000 00000100 00000012 0803")})
        EXPECT_EQ(nullptr, ROM::ChunkedMemoryManagementHeader::deserialize(damaged));
}

TEST(RomFormat, SectionRefusesDamage) {
    const auto withLength = [](const char* length) { // a header whose checksum is right
        auto bytes = hex(std::string("A5") + length + "03010007");
        const unsigned crc = Utils::Crc16::compute(bytes.data(), 9, 0);
        const auto rest = hex("0000 112233 B008");
        bytes.insert(bytes.end(), rest.begin(), rest.end());
        bytes[9] = static_cast<std::uint8_t>(crc >> 8);
        bytes[10] = static_cast<std::uint8_t>(crc);
        return bytes;
    };
    ASSERT_NE(nullptr, std::unique_ptr<ROM::Section>(ROM::Section::deserialize(withLength("00000010"))));
    for (const char* length : {"00000000", "0000000C", "00000011", "FFFFFFFF"})
        EXPECT_EQ(nullptr, ROM::Section::deserialize(withLength(length))) << length;
    for (const char* bytes :
         {"", "A5 0000000D 03 01 0007 D216", "A4 00000010 03 01 0007 D216 112233 B008",
          "A5 00000010 03 00 0007 D216 112233 B008", "A5 00000010 03 01 0007 D216 112233 B009"})
        EXPECT_EQ(nullptr, ROM::Section::deserialize(hex(bytes))) << bytes;
}

TEST(RomFormat, RecordRefusesImpossibleLengths) {
    for (const char* bytes : {"", "01 01 060000", "01 01 05000000", "01 01 00000000", "01 01 07000000",
                              "01 01 FFFFFFFF 00", "01 01 00000008 AABB"})
        EXPECT_EQ(nullptr, RecordProbe::deserialize(hex(bytes))) << bytes;
    const std::unique_ptr<ROM::SerializedDataBlock> empty(RecordProbe::deserialize(hex("09 02 06000000")));
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->getSerializedData().empty());
}

TEST(RomFormat, Strings) {
    std::uint8_t bytes[4] = {9, 9, 9, 9};
    EXPECT_EQ(bytes + 3, ROM::serialize(bytes, "AB"));
    EXPECT_THAT(bytes, ElementsAre('A', 'B', 0, 9));
    EXPECT_EQ(1u, ROM::serializedLength(""));
    std::string text;
    EXPECT_EQ(bytes + 3, ROM::deserialize(bytes, &text));
    EXPECT_EQ("AB", text);
    EXPECT_EQ(bytes + 3, ROM::deserialize(bytes + 1, bytes + 4, &text));
    EXPECT_EQ("B", text);
    EXPECT_EQ(nullptr, ROM::deserialize(bytes, bytes + 2, &text));
}

} // namespace
} // namespace Zentara::TestSupport
