#pragma once

#include <cstdint>

namespace Zentara::Host {

/// Eight bits a channel, as a screen shows them: 0 is dark, 255 as bright as can be. Starts as black. A plain value.
/// Separate.
struct Color {
    std::uint8_t red = 0; ///< 0 to 255, as the next two
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    friend bool operator==(const Color&, const Color&) = default;
};

} // namespace Zentara::Host
