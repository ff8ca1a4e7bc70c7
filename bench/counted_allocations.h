#pragma once

#include <cstddef>

namespace Bench {

/// How often the calling thread has taken memory by `new` so far, in whatever library it was.
[[nodiscard]] std::size_t allocationsOfThisThread() noexcept;

} // namespace Bench
