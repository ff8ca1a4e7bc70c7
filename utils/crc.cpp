#include <zentara/utils/crc.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

namespace Zentara::Utils {

namespace {

/// Bytes taken in one step. Table k holds what a byte contributes to the register when k more bytes follow it
/// in the step, so one look-up a byte remains while the look-ups of a step do not wait for one another.
constexpr std::size_t stepBytes = 16;

template<typename Register>
using Table = std::array<Register, 256>;
template<typename Register>
using Tables = std::array<Table<Register>, stepBytes>;

/// The remainder of one byte, shifted out at the low end.
template<typename Register>
constexpr Register reflectedEntry(Register value, Register polynomial) {
    for (int bit = 0; bit < 8; ++bit)
        value = static_cast<Register>((value & 1) != 0 ? value >> 1 ^ polynomial : value >> 1);
    return value;
}

/// Tests bit 3, where the usual table of this polynomial tests bit 7: stored checksums depend on it.
constexpr std::uint8_t bit3Entry(std::uint8_t value, std::uint8_t polynomial) {
    for (int bit = 0; bit < 8; ++bit)
        value = static_cast<std::uint8_t>((value & 0x08) != 0 ? value << 1 ^ polynomial : value << 1);
    return value;
}

template<typename Register>
constexpr Register step(const Table<Register>& table, Register crc, std::uint8_t byte) {
    const auto shifted = static_cast<Register>(static_cast<std::uint32_t>(crc) >> 8);
    return static_cast<Register>(table[(crc ^ byte) & 0xFF] ^ shifted);
}

/// Table 0 is the usual one; each further table takes an entry one zero byte onward.
template<typename Register>
constexpr Tables<Register> makeTables(Register (*entry)(Register, Register), Register polynomial) {
    Tables<Register> tables{};
    for (std::size_t i = 0; i < 256; ++i)
        tables[0][i] = entry(static_cast<Register>(i), polynomial);
    for (std::size_t k = 1; k < stepBytes; ++k)
        for (std::size_t i = 0; i < 256; ++i)
            tables[k][i] = step<Register>(tables[0], tables[k - 1][i], 0);
    return tables;
}

constexpr auto crc32Tables = makeTables<std::uint32_t>(reflectedEntry<std::uint32_t>, 0xEDB88320);
constexpr auto crc16Tables = makeTables<std::uint16_t>(reflectedEntry<std::uint16_t>, 0xA001);
constexpr auto crc8Tables = makeTables<std::uint8_t>(bit3Entry, 0xD5);

/// What the register adds to the k-th byte of a step.
template<std::size_t k, typename Register>
constexpr std::uint32_t registerByte(Register crc) {
    if constexpr (8 * k < std::numeric_limits<Register>::digits)
        return static_cast<std::uint32_t>(crc) >> 8 * k & 0xFF;
    else
        return 0;
}

template<typename Register, std::size_t... k>
Register wideStep(const Tables<Register>& tables, Register crc, const unsigned char* data,
                  std::index_sequence<k...>) {
    return static_cast<Register>((... ^ tables[stepBytes - 1 - k][data[k] ^ registerByte<k>(crc)]));
}

template<typename Register>
Register computeCrc(const Tables<Register>& tables, const unsigned char* data, unsigned int length,
                    Register crc) {
    if (!data)
        return crc;
    for (; length >= stepBytes; length -= stepBytes, data += stepBytes)
        crc = wideStep(tables, crc, data, std::make_index_sequence<stepBytes>());
    for (; length > 0; --length, ++data)
        crc = step(tables[0], crc, *data);
    return crc;
}

} // namespace

unsigned int Crc32::compute(const unsigned char* data, unsigned int length, unsigned int crc) {
    return computeCrc<std::uint32_t>(crc32Tables, data, length, crc);
}

unsigned short Crc16::compute(const unsigned char* data, unsigned int length, unsigned short crc) {
    return computeCrc<std::uint16_t>(crc16Tables, data, length, crc);
}

unsigned char Crc8::compute(const unsigned char* data, unsigned int length, unsigned char crc) {
    return computeCrc<std::uint8_t>(crc8Tables, data, length, crc);
}

} // namespace Zentara::Utils
