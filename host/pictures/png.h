#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Zentara::Host {

/// A PNG file's bytes. \param pixels rows from the top, three bytes (red, green, blue) a pixel.
/// \throws Failure when the picture cannot be encoded.
[[nodiscard]] std::string encodePng(const std::vector<std::uint8_t>& pixels, int width, int height);

} // namespace Zentara::Host
