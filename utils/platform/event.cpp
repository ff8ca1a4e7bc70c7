#include "utils/platform/event.h"

#include "utils/platform/time_left.h"
#include "utils/platform/word.h"

#include <atomic>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace Zentara::Utils::Platform {

namespace {

constexpr std::uint64_t oneToken = 1;
constexpr std::uint64_t raisedBit = std::uint64_t{1} << 31;
constexpr std::uint64_t oneWaiter = std::uint64_t{1} << 32;

constexpr std::uint32_t lowerHalf(std::uint64_t word) { return static_cast<std::uint32_t>(word); }
constexpr std::uint64_t tokens(std::uint64_t word) { return word & (raisedBit - 1); }
constexpr std::uint64_t waiters(std::uint64_t word) { return word >> 32; }

static_assert(std::endian::native == std::endian::little, "threads sleep on the word's first half");

/// An automatic or a manual event in one atomic word. Everything a setter needs to know is in the value that it
/// exchanges, so it does not look at the event again once a waiter may have freed it.
struct WordEvent final : Event {
    explicit WordEvent(Reset kind) noexcept : manual(kind == Reset::manual) {}

    void post() noexcept;
    void raise() noexcept;
    void clear() noexcept;
    bool pass(unsigned long milliseconds) noexcept;

private:
    bool take(std::uint64_t departing) noexcept;
    bool leave() noexcept;

public:
    const bool manual;

private:
    /// Bits 0 to 30: tokens of post(); bit 31: raised; bits 32 to 63: waiters. Threads sleep on the lower half while
    /// it is 0.
    std::atomic<std::uint64_t> word{0};
};

/// Lets one wait pass. There is room for one post for each waiter and one more, which stays for the next to come;
/// further posts add nothing.
void WordEvent::post() noexcept {
    std::uint64_t seen = word.load(std::memory_order_relaxed);
    std::uint64_t next = 0;
    do {
        const bool room = tokens(seen) <= waiters(seen);
        next = room ? seen + oneToken : seen;
        // Exchanged even when nothing changes: whoever takes the token must see what was written before this
        // post.
    } while (!word.compare_exchange_weak(seen, next, std::memory_order_acq_rel, std::memory_order_relaxed));
    // The event may be gone from here on.
    if (next != seen && waiters(seen) != 0)
        wakeOnWord(&word);
}

/// Lets every wait pass until clear().
void WordEvent::raise() noexcept {
    if (waiters(word.fetch_or(raisedBit, std::memory_order_acq_rel)) != 0)
        wakeAllOnWord(&word);
}

/// Takes back what post() or raise() gave and nobody took.
void WordEvent::clear() noexcept { word.fetch_and(~(oneWaiter - 1), std::memory_order_acq_rel); }

bool WordEvent::pass(unsigned long milliseconds) noexcept {
    if (take(0))
        return true;
    if (milliseconds == 0)
        return false;
    const TimeLeft left(milliseconds);
    word.fetch_add(oneWaiter, std::memory_order_relaxed);
    unsigned long next = milliseconds;
    while (!take(oneWaiter)) {
        if (!sleepOnWord(&word, 0, next))
            return leave();
        next = left.milliseconds();
    }
    return true;
}

/// Passes if the event lets it, and counts the leaving waiter off in the same step.
bool WordEvent::take(std::uint64_t departing) noexcept {
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
bool WordEvent::leave() noexcept {
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

WordEvent& self(Event& event) { return static_cast<WordEvent&>(event); }

} // namespace

Event* Event::create(Reset reset) noexcept {
    Event* const event = new (std::nothrow) WordEvent(reset);
    if (!event)
        std::abort();
    return event;
}

void Event::destroy(Event* event) noexcept { delete static_cast<WordEvent*>(event); }

void Event::set() noexcept {
    WordEvent& event = self(*this);
    if (event.manual)
        event.raise();
    else
        event.post();
}

void Event::reset() noexcept { self(*this).clear(); }

bool Event::wait(unsigned long milliseconds) noexcept { return self(*this).pass(milliseconds); }

} // namespace Zentara::Utils::Platform
