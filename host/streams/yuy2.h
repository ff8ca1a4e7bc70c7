#pragma once

#include <cstddef>
#include <cstdint>

namespace Zentara::Host {

/// Packed YUY2 (Y0 U Y1 V for two pixels) to red, green and blue, by BT.601.
/// \param pixels an even number \param rgb 3 bytes for each
void rgbOfYuy2(const std::uint8_t* yuy2, std::size_t pixels, std::uint8_t* rgb) noexcept;

} // namespace Zentara::Host
