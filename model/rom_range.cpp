#include "model/rom_range.h"

#include <bit>

namespace Zentara::Model {

namespace {

/// As all numbers of the flash, unlike those that travel to back-ends.
float loadBigEndianFloat(const unsigned char* bytes) {
    const auto byte = [bytes](int i) { return static_cast<std::uint32_t>(bytes[i]); };
    return std::bit_cast<float>(byte(0) << 24 | byte(1) << 16 | byte(2) << 8 | byte(3));
}

} // namespace

std::optional<RomRange> parseRomRange(const unsigned char* bytes, unsigned int size) {
    if (size < RomRange::headerBytes)
        return std::nullopt;
    const unsigned int count = bytes[1];
    // Compared as a product against what is left, which cannot wrap: the count has 8 bits.
    if (RomRange::parameterBytes * count > size - RomRange::headerBytes)
        return std::nullopt;
    RomRange range;
    range.algorithm = bytes[0];
    for (unsigned int i = 0; i < count; ++i)
        range.parameters.push_back(
            loadBigEndianFloat(bytes + RomRange::headerBytes + RomRange::parameterBytes * i));
    return range;
}

} // namespace Zentara::Model
