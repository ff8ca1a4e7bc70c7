#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Bench {

/// The checksum by eight tables, eight bytes a step: the usual fast one without instructions of its own.
template<class Word, Word Polynomial>
class SlicingBy8 {
public:
    SlicingBy8() {
        for (unsigned i = 0; i < 256; ++i) {
            Word entry = static_cast<Word>(i);
            for (int bit = 0; bit < 8; ++bit)
                entry = static_cast<Word>((entry & 1) ? (entry >> 1) ^ Polynomial : entry >> 1);
            tables[0][i] = entry;
        }
        for (std::size_t table = 1; table < tables.size(); ++table) {
            for (unsigned i = 0; i < 256; ++i) {
                const Word before = tables[table - 1][i];
                tables[table][i] = static_cast<Word>(tables[0][before & 0xFF] ^ (before >> 8));
            }
        }
    }

    [[nodiscard]] Word compute(const unsigned char* bytes, std::size_t count) const {
        Word crc = 0;
        for (; count >= 8; count -= 8, bytes += 8) {
            std::uint64_t eight = 0;
            std::memcpy(&eight, bytes, sizeof eight);
            eight ^= crc;
            crc = static_cast<Word>(at(7, eight) ^ at(6, eight >> 8) ^ at(5, eight >> 16) ^
                                    at(4, eight >> 24) ^ at(3, eight >> 32) ^ at(2, eight >> 40) ^
                                    at(1, eight >> 48) ^ at(0, eight >> 56));
        }
        for (; count > 0; --count, ++bytes)
            crc = static_cast<Word>(tables[0][(crc ^ *bytes) & 0xFF] ^ (crc >> 8));
        return crc;
    }

private:
    [[nodiscard]] Word at(std::size_t table, std::uint64_t byte) const { return tables[table][byte & 0xFF]; }

    std::array<std::array<Word, 256>, 8> tables{};
};

} // namespace Bench
