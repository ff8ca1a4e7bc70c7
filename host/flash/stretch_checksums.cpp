#include "host/flash/stretch_checksums.h"

#include <bit>

#include <zentara/utils/crc.h>

namespace Zentara::Host {
namespace {

/// What each byte alone leaves in the register. The next byte meets its low half, and the high half moves down.
std::array<std::uint16_t, 256> whatBytesLeave() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned value = 0; value < table.size(); ++value) {
        const auto byte = static_cast<std::uint8_t>(value);
        table[value] = Utils::Crc16::compute(&byte, 1, 0);
    }
    return table;
}

} // namespace

StretchChecksums::StretchChecksums(std::span<const std::uint8_t> bytes) : before(bytes.size() + 1) {
    static const std::array<std::uint16_t, 256> table = whatBytesLeave();
    std::uint16_t crc = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        before[i + 1] = crc = static_cast<std::uint16_t>(table[(crc ^ bytes[i]) & 0xFF] ^ crc >> 8);

    Passage passage;
    constexpr std::uint8_t zero = 0;
    for (unsigned bit = 0; bit < passage.size(); ++bit)
        passage[bit] = Utils::Crc16::compute(&zero, 1, static_cast<std::uint16_t>(1U << bit));
    // What twice as many zeros do is what so many do, done twice.
    for (std::size_t length = bytes.size(); length > 0; length /= 2) {
        passages.push_back(passage);
        for (std::uint16_t& bit : passage)
            bit = pass(passages.back(), bit);
    }
}

std::uint16_t StretchChecksums::pass(const Passage& passage, std::uint16_t crc) {
    std::uint16_t passed = 0;
    for (unsigned bits = crc; bits != 0; bits &= bits - 1)
        passed = static_cast<std::uint16_t>(passed ^ passage[static_cast<unsigned>(std::countr_zero(bits))]);
    return passed;
}

/// The register is linear: what the bytes in front leave in it passes through the stretch as if that were
/// zeros, and is added to what the stretch leaves.
std::uint16_t StretchChecksums::of(std::size_t offset, std::size_t length) const {
    std::uint16_t front = before[offset];
    for (std::size_t i = 0; length >> i != 0; ++i)
        if ((length >> i & 1) != 0)
            front = pass(passages[i], front);
    return static_cast<std::uint16_t>(before[offset + length] ^ front);
}

} // namespace Zentara::Host
