#pragma once

#include <cstdint>

namespace Zentara::Host {

/// Eight bits a channel, as a screen shows them.
struct Color {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    friend bool operator==(const Color&, const Color&) = default;
};

} // namespace Zentara::Host
