#include <zentara/host/hex_bytes.h>

#include <charconv>

namespace Zentara::Host {

std::string toHex(std::span<const std::uint8_t> bytes) {
    constexpr const char* digits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const std::uint8_t byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

std::optional<Bytes> fromHex(const std::string& text) {
    if (text.size() % 2 != 0)
        return std::nullopt;
    Bytes bytes(text.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const char* digits = text.data() + 2 * i;
        const auto result = std::from_chars(digits, digits + 2, bytes[i], 16);
        if (result.ec != std::errc() || result.ptr != digits + 2)
            return std::nullopt;
    }
    return bytes;
}

} // namespace Zentara::Host
