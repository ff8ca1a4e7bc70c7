#include <zentara/utils/binary_reader.h>
#include <zentara/utils/binary_writer.h>
#include <zentara/utils/byte_array.h>
#include <zentara/utils/crc.h>

#include <cstdint>

#include <gmock/gmock.h>

#include <zentara/utils/exceptions.h>

#include "support/failure.h"

namespace Zentara::Utils {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<int> bytesOf(const BinaryWriter& writer) {
    const ByteArray bytes = writer.toByteArray();
    return std::vector<int>(bytes.data(), bytes.data() + bytes.size());
}

template<typename T>
std::vector<int> encoded(const T& value) {
    BinaryWriter writer;
    writer.write(value);
    return bytesOf(writer);
}

template<std::size_t size>
BinaryReader readerOf(const unsigned char (&bytes)[size]) {
    return BinaryReader(bytes, size);
}

TEST(BinaryWriter, EncodesLittleEndianWithoutPadding) {
    EXPECT_THAT(encoded<signed char>(-2), ElementsAre(0xFE));
    EXPECT_THAT(encoded(true), ElementsAre(1));
    EXPECT_THAT(encoded<short>(-2), ElementsAre(0xFE, 0xFF));
    EXPECT_THAT(encoded(0x12345678), ElementsAre(0x78, 0x56, 0x34, 0x12));
    EXPECT_THAT(encoded<std::int64_t>(-2), ElementsAre(0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF));
    EXPECT_THAT(encoded(0x0102030405060708ULL), ElementsAre(8, 7, 6, 5, 4, 3, 2, 1));
    EXPECT_THAT(encoded(1.0f), ElementsAre(0, 0, 0x80, 0x3F));
    EXPECT_THAT(encoded("ab"), ElementsAre(2, 0, 0, 0, 'a', 'b'));
    EXPECT_THAT(encoded(std::string("a\0", 2)), ElementsAre(2, 0, 0, 0, 'a', 0));
    EXPECT_THAT(encoded(static_cast<const char*>(nullptr)), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(encoded(std::vector<bool>{true, false}), ElementsAre(2, 0, 0, 0, 1, 0));
    EXPECT_THAT(encoded(std::vector<short>{1, 2}), ElementsAre(2, 0, 0, 0, 1, 0, 2, 0));
    EXPECT_THAT(encoded(std::vector<const char*>{"a", "b"}),
                ElementsAre(2, 0, 0, 0, 1, 0, 0, 0, 'a', 1, 0, 0, 0, 'b'));
    EXPECT_EQ(encoded(std::vector<const char*>{"a", "b"}), encoded(std::vector<std::string>{"a", "b"}));
}

TEST(BinaryWriter, AppendsRawBytesAndHandsOutCopies) {
    BinaryWriter writer;
    int size = -1;
    const std::unique_ptr<unsigned char[]> empty(writer.toBuffer(&size));
    EXPECT_EQ(size, 0);
    EXPECT_NE(empty, nullptr);

    const unsigned char raw[] = {9, 8, 7};
    writer.write(raw, 3);
    writer.write(raw, 0);
    writer.write(raw, -1);
    const std::unique_ptr<unsigned char[]> buffer(writer.toBuffer(&size));
    EXPECT_EQ(size, 3);
    buffer[0] = 1;
    EXPECT_THAT(bytesOf(writer), ElementsAre(9, 8, 7));
}

template<typename T>
void expectBack(const std::vector<T>& values, std::vector<T> (BinaryReader::*read)()) {
    BinaryWriter writer;
    writer.write(values);
    const ByteArray bytes = writer.toByteArray();
    BinaryReader reader(bytes.data(), bytes.size());
    EXPECT_EQ((reader.*read)(), values);
    EXPECT_THROW(reader.readUByte(), UIOException);
}

TEST(BinaryReader, ReadsBackWhatWasWritten) {
    expectBack<signed char>({-1, 2}, &BinaryReader::readBytes);
    expectBack<unsigned char>({255}, &BinaryReader::readUBytes);
    expectBack<bool>({true, false}, &BinaryReader::readBools);
    expectBack<short>({-3}, &BinaryReader::readShorts);
    expectBack<unsigned short>({65535}, &BinaryReader::readUShorts);
    expectBack<int>({-4}, &BinaryReader::readInts);
    expectBack<unsigned int>({4000000000u}, &BinaryReader::readUInts);
    expectBack<std::int64_t>({-5}, &BinaryReader::readLongs);
    expectBack<std::uint64_t>({~0ull}, &BinaryReader::readULongs);
    expectBack<float>({0.5f, -2.0f}, &BinaryReader::readFloats);
    expectBack<std::string>({"", "text"}, &BinaryReader::readStrings);
}

TEST(BinaryReader, StaysWhereItIsWhenBytesAreMissing) {
    const unsigned char bytes[] = {1, 2, 3};
    BinaryReader reader = readerOf(bytes);
    const BinaryReader copy = reader;
    EXPECT_EQ(TestSupport::messageOf<UIOException>([&] { reader.readInt(); }), "unexpected end of stream");
    unsigned char target[3] = {};
    EXPECT_THROW(reader.read(target, -1), UIOException);
    reader.read(target, 3);
    EXPECT_THAT(target, ElementsAre(1, 2, 3));
    EXPECT_EQ(BinaryReader(copy).readShort(), 0x0201);
    EXPECT_TRUE(BinaryReader(bytes + 1, 1).readBool()) << "any byte but 0";
    EXPECT_THROW(BinaryReader(nullptr, 4).readUByte(), UIOException);
    EXPECT_THROW(BinaryReader(bytes, -4).readUByte(), UIOException);
}

TEST(BinaryReader, TakesHostileLengthsForWhatTheyAre) {
    const unsigned char negative[] = {0xFB, 0xFF, 0xFF, 0xFF, 7};
    EXPECT_THROW(readerOf(negative).readString(), UIOException);
    BinaryReader reader = readerOf(negative);
    EXPECT_THAT(reader.readInts(), IsEmpty());
    EXPECT_EQ(reader.readUByte(), 7);

    const unsigned char huge[] = {0xFF, 0xFF, 0xFF, 0x7F, 1, 2, 3, 4};
    EXPECT_THROW(readerOf(huge).readString(), UIOException);
    EXPECT_THROW(readerOf(huge).readULongs(), UIOException);
    EXPECT_THROW(readerOf(huge).readStrings(), UIOException);

    const unsigned char torn[] = {3, 0, 0, 0, 1, 0, 9};
    BinaryReader behind = readerOf(torn);
    EXPECT_THROW(behind.readShorts(), UIOException);
    EXPECT_EQ(behind.readUByte(), 9) << "the whole elements are read";
}

TEST(ByteArray, SharesItsBytesBetweenCopies) {
    ByteArray first(new unsigned char[2]{5, 6}, 2);
    ByteArray second = first;
    ByteArray third;
    third = second;
    EXPECT_EQ(third.data(), first.data());
    first = third; // its own bytes, which others hold
    EXPECT_EQ(first.size(), 2);
    first = ByteArray();
    second = ByteArray();
    EXPECT_THAT(std::vector<int>(third.data(), third.data() + third.size()), ElementsAre(5, 6));
    // Releasing comes first, also when the last holder is assigned to itself.
    const ByteArray& same = third;
    third = same;
    EXPECT_EQ(third.size(), 0);
    EXPECT_EQ(third.data(), nullptr);
}

const unsigned char* bytesIn(const char* text) { return reinterpret_cast<const unsigned char*>(text); }

TEST(Crc, GivesThePublishedCheckValues) {
    EXPECT_EQ(Crc16::compute(bytesIn("123456789"), 9, 0), 0xBB3D);
    EXPECT_EQ(Crc32::compute(bytesIn("123456789"), 9, 0xFFFFFFFF), 0x340BC6D9u);
    EXPECT_EQ(Crc32::compute(nullptr, 5, 77), 77u);
    // This one tests bit three instead of bit seven.
    EXPECT_EQ(Crc8::compute(bytesIn("\x08"), 1, 0), 0x8A);
    EXPECT_EQ(Crc8::compute(bytesIn("123456789"), 9, 0), 0xC1);
}

TEST(Crc, TakesManyBytesAsItTakesEachAlone) {
    std::vector<unsigned char> data;
    auto crc8 = Crc8::compute(nullptr, 0, 0x12);
    auto crc16 = Crc16::compute(nullptr, 0, 0x1234);
    auto crc32 = Crc32::compute(nullptr, 0, 0x12345678);
    for (unsigned length = 0; length < 70; ++length) {
        EXPECT_EQ(Crc8::compute(data.data(), length, 0x12), crc8) << length;
        EXPECT_EQ(Crc16::compute(data.data(), length, 0x1234), crc16) << length;
        EXPECT_EQ(Crc32::compute(data.data(), length, 0x12345678), crc32) << length;
        data.push_back(static_cast<unsigned char>(length * 151 + 89));
        crc8 = Crc8::compute(&data.back(), 1, crc8);
        crc16 = Crc16::compute(&data.back(), 1, crc16);
        crc32 = Crc32::compute(&data.back(), 1, crc32);
    }
}

} // namespace
} // namespace Zentara::Utils
