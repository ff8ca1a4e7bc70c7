#pragma once

#include <string>

#include <zentara/io/camera_chip.h>

namespace Zentara::IO {

// What a transfer means to each controller, in a few words.

[[nodiscard]] std::string ov0570Meaning(const ChipTransfer& transfer);
[[nodiscard]] std::string vc0258Meaning(const ChipTransfer& transfer);
[[nodiscard]] std::string vc0345Meaning(const ChipTransfer& transfer);

} // namespace Zentara::IO
