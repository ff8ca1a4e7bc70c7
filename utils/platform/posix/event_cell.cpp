#include "utils/platform/posix/event_cell.h"

#include "utils/platform/posix/futex.h"

#include <bit>
#include <climits>

namespace Zentara::Utils::Platform {

namespace {

constexpr std::uint64_t oneToken = 1;
constexpr std::uint64_t raisedBit = std::uint64_t{1} << 31;
constexpr std::uint64_t oneWaiter = std::uint64_t{1} << 32;

constexpr std::uint32_t lowerHalf(std::uint64_t word) { return static_cast<std::uint32_t>(word); }
constexpr std::uint64_t tokens(std::uint64_t word) { return word & (raisedBit - 1); }
constexpr std::uint64_t waiters(std::uint64_t word) { return word >> 32; }

static_assert(std::endian::native == std::endian::little, "the futex is the word's first half");

} // namespace

void EventCell::post() noexcept {
    std::uint64_t seen = word.load(std::memory_order_relaxed);
    std::uint64_t next = 0;
    do {
        const bool room = tokens(seen) <= waiters(seen);
        next = room ? seen + oneToken : seen;
        // Exchanged even when nothing changes: whoever takes the token must see what was written before this
        // post.
    } while (!word.compare_exchange_weak(seen, next, std::memory_order_acq_rel, std::memory_order_relaxed));
    if (next != seen && waiters(seen) != 0)
        wake(1);
}

void EventCell::raise() noexcept {
    if (waiters(word.fetch_or(raisedBit, std::memory_order_acq_rel)) != 0)
        wake(INT_MAX);
}

void EventCell::clear() noexcept { word.fetch_and(~(oneWaiter - 1), std::memory_order_acq_rel); }

bool EventCell::wait(unsigned long milliseconds) noexcept {
    if (take(0))
        return true;
    if (milliseconds == 0)
        return false;
    const Deadline deadline(milliseconds);
    word.fetch_add(oneWaiter, std::memory_order_relaxed);
    while (!take(oneWaiter)) {
        if (!sleep(deadline))
            return leave();
    }
    return true;
}

/// Passes if the cell lets it, and counts the leaving waiter off in the same step.
bool EventCell::take(std::uint64_t departing) noexcept {
    std::uint64_t seen = word.load(std::memory_order_relaxed);
    while (lowerHalf(seen) != 0) {
        const std::uint64_t token = seen & raisedBit ? 0 : oneToken;
        if (word.compare_exchange_weak(seen, seen - token - departing, std::memory_order_acq_rel,
                                       std::memory_order_relaxed))
            return true;
    }
    return false;
}

/// Gives up, unless a token has come at the last moment: it may be meant for nobody else.
bool EventCell::leave() noexcept {
    std::uint64_t seen = word.load(std::memory_order_relaxed);
    for (;;) {
        if (lowerHalf(seen) != 0 && take(oneWaiter))
            return true;
        seen = word.load(std::memory_order_relaxed);
        if (lowerHalf(seen) == 0 &&
            word.compare_exchange_weak(seen, seen - oneWaiter, std::memory_order_relaxed))
            return false;
    }
}

/// True when it is worth looking again, false once the deadline has passed.
bool EventCell::sleep(const Deadline& deadline) noexcept { return futexWait(&word, 0, deadline); }

// The cell may be gone by now.
void EventCell::wake(int count) noexcept { futexWake(&word, count); }

} // namespace Zentara::Utils::Platform
