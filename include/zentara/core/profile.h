#pragma once

#include <cstdint>

namespace Zentara::Core {

/// Selects among the descriptions that a store keeps for the same hardware. A store may define more.
enum Profile : std::int32_t {
    Profile_DEFAULT = 0,
};

} // namespace Zentara::Core
