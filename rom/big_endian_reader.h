#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace Zentara::ROM {

/// Reads big-endian fields from bytes that nobody vouches for. A field that is not wholly there reads as 0
/// and is remembered: a parser reads a whole record and asks ok() once. Nothing after the first missing field
/// is read.
class BigEndianReader {
public:
    explicit BigEndianReader(std::span<const std::uint8_t> source) : bytes(source) {}

    /// One that holds nothing and has failed already.
    static BigEndianReader failed() {
        BigEndianReader reader{{}};
        reader.complete = false;
        return reader;
    }

    bool ok() const { return complete; }
    std::size_t remaining() const { return complete ? bytes.size() - position : 0; }

    std::uint8_t readU8() { return static_cast<std::uint8_t>(readInteger<1>()); }
    std::uint16_t readU16() { return static_cast<std::uint16_t>(readInteger<2>()); }
    std::uint32_t readU32() { return readInteger<4>(); }
    float readFloat() { return std::bit_cast<float>(readU32()); }

    std::span<const std::uint8_t> readBytes(std::size_t length) {
        // Compared with what is left: a length that a camera stored may be any number, and a sum would wrap.
        if (!complete || length > bytes.size() - position) {
            complete = false;
            return {};
        }
        const auto taken = bytes.subspan(position, length);
        position += length;
        return taken;
    }

    /// A text up to its zero byte, which must be there.
    std::string readText() {
        const auto rest = bytes.subspan(position);
        const auto end = std::find(rest.begin(), rest.end(), std::uint8_t{0});
        if (!complete || end == rest.end()) {
            complete = false;
            return {};
        }
        position += static_cast<std::size_t>(end - rest.begin()) + 1;
        return std::string(rest.begin(), end);
    }

private:
    template<std::size_t Size>
    std::uint32_t readInteger() {
        std::uint32_t value = 0;
        for (const std::uint8_t byte : readBytes(Size))
            value = value << 8 | byte;
        return value;
    }

    std::span<const std::uint8_t> bytes; ///< not owned
    std::size_t position = 0;            ///< never past the end
    bool complete = true;                ///< false once a field was missing, and from then on
};

} // namespace Zentara::ROM
