#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace Zentara::ROM {

/// Collects big-endian fields.
class BigEndianWriter {
public:
    /// \param expected  bytes to make room for at once; more may be written.
    explicit BigEndianWriter(std::size_t expected) { bytes.reserve(expected); }

    void writeU8(std::uint8_t value) { bytes.push_back(value); }
    void writeU16(std::uint16_t value) {
        writeU8(static_cast<std::uint8_t>(value >> 8));
        writeU8(static_cast<std::uint8_t>(value));
    }
    void writeU32(std::uint32_t value) {
        writeU16(static_cast<std::uint16_t>(value >> 16));
        writeU16(static_cast<std::uint16_t>(value));
    }
    void writeFloat(float value) { writeU32(std::bit_cast<std::uint32_t>(value)); }
    void writeBytes(std::span<const std::uint8_t> values) {
        bytes.insert(bytes.end(), values.begin(), values.end());
    }

    std::span<const std::uint8_t> written() const { return bytes; }
    std::vector<std::uint8_t> take() { return std::move(bytes); }

private:
    std::vector<std::uint8_t> bytes; ///< what was written; empty once taken
};

} // namespace Zentara::ROM
