#pragma once

#include <cstdint>

#include "plugins/descriptions/wire.h"

namespace Zentara::Simulated {

/// What the sensor sends for depth (millimetres) and confidence (0 to 1000), of pixelCount values each.
/// \param frame rawFrameBytes(header.mode) bytes
void encodeRawFrame(const Cameras::RawHeader& header, const std::uint16_t* depth,
                    const std::uint16_t* confidence, std::uint8_t* frame);

} // namespace Zentara::Simulated
