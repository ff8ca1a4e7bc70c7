#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>

namespace Zentara::Fuzz {

/// What must hold whatever the input is.
inline void require(bool holds) {
    if (!holds)
        std::abort();
}

/// An input that is taken apart from its front. Beyond its end everything is zero.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : next(data), left(size) {}

    [[nodiscard]] bool isEmpty() const { return left == 0; }
    [[nodiscard]] std::size_t size() const { return left; }

    /// As many bytes as there are, and zeros.
    void take(void* target, std::size_t count) {
        const std::size_t there = std::min(count, left);
        if (there > 0)
            std::memcpy(target, next, there);
        if (count > there)
            std::memset(static_cast<std::uint8_t*>(target) + there, 0, count - there);
        next += there;
        left -= there;
    }

    /// The bytes of a number, low ones first.
    template<typename Number>
    Number number() {
        static_assert(std::is_arithmetic_v<Number> && !std::is_same_v<Number, bool>);
        Number value;
        take(&value, sizeof value);
        return value;
    }
    std::uint8_t byte() { return number<std::uint8_t>(); }

    std::string text(std::size_t count) {
        std::string text(std::min(count, left), '\0');
        take(text.data(), text.size());
        return text;
    }

private:
    const std::uint8_t* next;
    std::size_t left;
};

} // namespace Zentara::Fuzz
