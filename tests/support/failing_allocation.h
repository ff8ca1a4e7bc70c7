#pragma once

#include <cstddef>
#include <functional>

namespace Zentara::TestSupport {

/// While it lives, the nth allocation of this thread, counted from 0, finds no memory. Off Windows this reaches into every
/// library of the program; there, into the program's own code. One at a time.
class FailingAllocation {
public:
    /// Events and threads ask by the form of new that does not throw, and end the process when there is no memory. So do
    /// the headers of flash blocks, which have another answer.
    enum class Form { every, throwing };

    explicit FailingAllocation(std::size_t n, Form form = Form::every) noexcept;
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// Whether it came to that.
    bool hit() const noexcept;
};

/// The same for the nth allocation of the whole program, by the form of new that throws.
class FailingAllocationAnywhere {
public:
    explicit FailingAllocationAnywhere(std::size_t n) noexcept;
    ~FailingAllocationAnywhere();
    FailingAllocationAnywhere(const FailingAllocationAnywhere&) = delete;
    FailingAllocationAnywhere& operator=(const FailingAllocationAnywhere&) = delete;

    /// How many there were so far.
    static std::size_t count() noexcept;
};

/// Runs what is given to it with one allocation failing; true when that threw std::bad_alloc.
using WithoutMemory = std::function<bool(const std::function<void()>&)>;

/// Makes the attempt with each of its allocations failing once, until there is none left. A failed expectation ends it.
void walkAllocations(const std::function<void(const WithoutMemory&)>& attempt,
                     FailingAllocation::Form form = FailingAllocation::Form::every);

} // namespace Zentara::TestSupport
