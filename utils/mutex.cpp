#include <zentara/utils/mutex.h>

#include "utils/lock_order.h"
#include "utils/platform/event.h"
#include "utils/platform/word.h"
#include "utils/try_mutex.h"

#include <cstdlib>

namespace Zentara::Utils::Threading {

namespace {

// The word: bit 0 says that threads may be asleep on it, bits 6 to 47 are the mark of the thread that holds it, and the
// upper 16 bits count the acquisitions beyond its first. 0 is free. Sleepers look at the lower half, where bit 0 is: it
// is set before they sleep, so whoever frees the word knows of them.
using Word = std::atomic<std::uint64_t>;

constexpr std::uint64_t contended = 1; ///< who gives the word back must wake somebody
constexpr std::uint64_t holderBits = ((std::uint64_t{1} << 48) - 1) & ~std::uint64_t{63};
constexpr std::uint64_t onceMore = std::uint64_t{1} << 48;

/// Who had to wait does not know whether others still do, and takes the word as contended.
void waitAndTake(Word& word, std::uint64_t self) noexcept {
    std::uint64_t seen = word.load(std::memory_order_relaxed);
    for (;;) {
        if (seen == 0) {
            if (word.compare_exchange_weak(seen, self | contended, std::memory_order_acquire,
                                           std::memory_order_relaxed))
                return;
            continue;
        }
        // The mark goes in before the sleep, and the sleep ends at once if the word is no longer as it was marked: a
        // release in between is not missed.
        const std::uint64_t marked = seen | contended;
        if (seen != marked && !word.compare_exchange_weak(seen, marked, std::memory_order_relaxed))
            continue;
        Platform::sleepOnWord(&word, static_cast<std::uint32_t>(marked), Platform::infiniteWait);
        seen = word.load(std::memory_order_relaxed);
    }
}

bool tryToTake(Word& word, std::uint64_t self) noexcept {
    std::uint64_t seen = 0;
    if (word.compare_exchange_strong(seen, self, std::memory_order_acquire, std::memory_order_relaxed))
        return true;
    if ((seen & holderBits) != self)
        return false;
    if (word.fetch_add(onceMore, std::memory_order_relaxed) >= ~(onceMore - 1))
        std::abort(); // more often than can be counted
    return true;
}

void take(Word& word) noexcept {
    const std::uint64_t self = Platform::threadMark();
    if (!tryToTake(word, self))
        waitAndTake(word, self);
}

void giveBack(Word& word) noexcept {
    const std::uint64_t seen = word.load(std::memory_order_relaxed);
    if ((seen & holderBits) != Platform::threadMark())
        std::abort(); // it is another thread's
    if (seen >= onceMore)
        word.fetch_sub(onceMore, std::memory_order_relaxed);
    else if ((word.exchange(0, std::memory_order_release) & contended) != 0)
        Platform::wakeOnWord(&word);
}

} // namespace

// Nothing was taken from the system.
Mutex::~Mutex() { LockOrder::forget(&word); }

void Mutex::acquire() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS {
    const LockOrder::Taking taking(&word);
    take(word);
}

void Mutex::release() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS {
    const LockOrder::GivingBack givingBack(&word);
    giveBack(word);
}

void TryMutex::lock() noexcept {
    const LockOrder::Taking taking(&word);
    take(word);
}

bool TryMutex::try_lock() noexcept {
    LockOrder::Taking taking(&word, true);
    return taking.tell(tryToTake(word, Platform::threadMark()));
}

void TryMutex::unlock() noexcept {
    const LockOrder::GivingBack givingBack(&word);
    giveBack(word);
}

void RecursiveMutex::acquire() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS { mutex.acquire(); }

void RecursiveMutex::release() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS { mutex.release(); }

} // namespace Zentara::Utils::Threading
