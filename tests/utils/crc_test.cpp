#include <zentara/utils/crc.h>

#include <cstring>
#include <vector>

#include <gmock/gmock.h>

namespace Zentara::Utils {
namespace {

const unsigned char* bytes(const char* text) { return reinterpret_cast<const unsigned char*>(text); }

/// One bit at a time, as an independent measure of the tables.
template<typename Register>
Register reflectedBitwise(const std::vector<unsigned char>& data, Register crc, Register polynomial) {
    for (unsigned char byte : data) {
        crc = static_cast<Register>(crc ^ byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = static_cast<Register>(crc & 1 ? crc >> 1 ^ polynomial : crc >> 1);
    }
    return crc;
}

unsigned char bit3Bitwise(const std::vector<unsigned char>& data, unsigned char crc) {
    for (unsigned char byte : data) {
        crc = static_cast<unsigned char>(crc ^ byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = static_cast<unsigned char>(crc & 0x08 ? crc << 1 ^ 0xD5 : crc << 1);
    }
    return crc;
}

TEST(Crc, GivesThePublishedCheckValues) {
    EXPECT_EQ(Crc16::compute(bytes("123456789"), 9, 0), 0xBB3D);
    EXPECT_EQ(Crc32::compute(bytes("123456789"), 9, 0xFFFFFFFF), 0x340BC6D9u);
}

TEST(Crc, Crc8TestsBitThreeInsteadOfBitSeven) {
    EXPECT_EQ(Crc8::compute(bytes("\0"), 1, 0), 0);
    EXPECT_EQ(Crc8::compute(bytes("\x08"), 1, 0), 0x8A);
}

TEST(Crc, AgreesWithTheBitwiseFormAtEveryLengthAndSplit) {
    std::vector<unsigned char> data;
    for (unsigned length = 0; length < 70; ++length) {
        EXPECT_EQ(Crc32::compute(data.data(), length, 0x12345678),
                  reflectedBitwise<unsigned>(data, 0x12345678, 0xEDB88320));
        EXPECT_EQ(Crc16::compute(data.data(), length, 0x1234),
                  reflectedBitwise<unsigned short>(data, 0x1234, 0xA001));
        EXPECT_EQ(Crc8::compute(data.data(), length, 0x12), bit3Bitwise(data, 0x12));
        const unsigned half = length / 2;
        EXPECT_EQ(Crc16::compute(data.data() + half, length - half, Crc16::compute(data.data(), half, 7)),
                  Crc16::compute(data.data(), length, 7));
        data.push_back(static_cast<unsigned char>(length * 151 + 89));
    }
}

TEST(Crc, LeavesTheRegisterWithoutBytes) {
    EXPECT_EQ(Crc32::compute(nullptr, 5, 77), 77u);
    EXPECT_EQ(Crc16::compute(bytes("x"), 0, 77), 77);
}

} // namespace
} // namespace Zentara::Utils
