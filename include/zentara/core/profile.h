#pragma once

#include <cstdint>

namespace Zentara::Core {

/// Selects among the descriptions that a store keeps for the same hardware, as another set of modes or commands. A store
/// may define more, with numbers from 1.
enum Profile : std::int32_t {
    Profile_DEFAULT = 0, ///< the one that every described node has
};

} // namespace Zentara::Core
