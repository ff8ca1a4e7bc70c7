#pragma once

#include <cstdint>
#include <functional>

namespace Zentara::Host {

/// Told how far long work is: `done` units of `all`, whose unit the operation names. Called on the thread that called
/// the operation. False asks for the end: the operation then throws Failure (Interrupted) as soon as it can end without
/// leaving half of a change.
using Progress = std::function<bool(std::uint64_t done, std::uint64_t all)>;

} // namespace Zentara::Host
