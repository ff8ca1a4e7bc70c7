#pragma once

#include <cstddef>

namespace Zentara::Host {

/// The least multiple of the step that is no less.
constexpr std::size_t roundedUp(std::size_t bytes, std::size_t step) noexcept {
    return (bytes + step - 1) / step * step;
}

} // namespace Zentara::Host
