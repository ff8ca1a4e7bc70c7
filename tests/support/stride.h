#pragma once

#include <cstddef>

namespace Zentara::TestSupport {

/// Long walks over cases of one kind take every one in a plain build, and every 13th under a sanitizer, where each costs
/// ten times as much.
inline constexpr std::size_t stride = ZENTARA_TEST_STRIDE;

} // namespace Zentara::TestSupport
