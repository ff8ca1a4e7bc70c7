#pragma once

#include <cstddef>

namespace Zentara::TestSupport {

/// While it lives, the nth allocation of this thread, counted from 0, finds no memory. Off Windows this reaches into every
/// library of the program; there, into the program's own code. One at a time.
class FailingAllocation {
public:
    explicit FailingAllocation(std::size_t n) noexcept;
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// Whether it came to that.
    bool hit() const noexcept;
};

} // namespace Zentara::TestSupport
