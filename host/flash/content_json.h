#pragma once

#include <cstdint>

#include <zentara/host/flash_content.h>

#include "host/json.h"

namespace Zentara::Host {

/// A section as toJson() has it.
[[nodiscard]] Json sectionJson(std::uint16_t uid, const FlashSection& section);

} // namespace Zentara::Host
