#pragma once

#include <zentara/utils/clock.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/signal.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <utility>

namespace Zentara::Utils::Collection {

/// A FIFO between threads, without a bound. Safe; must outlive every call on it.
/// A push costs one lock, and one wake-up only when somebody waits. Elements go to the threads that wait in no promised
/// order; each goes to one.
template<typename T>
class Queue final {
public:
    Queue() = default;
    Queue(const Queue&) = delete;
    Queue& operator=(const Queue&) = delete;

    /// Appends. Never waits for room.
    /// \throws std::bad_alloc, or what moving a T throws; the queue is unchanged then.
    void push(T value) {
        bool wake = false;
        {
            Threading::AutoLock hold(lock);
            elements.push_back(std::move(value));
            wake = waiting != 0;
        }
        // After the unlock, else the woken thread would run straight into the lock.
        if (wake)
            available.set();
    }

    /// Takes the oldest element, waiting for one without limit.
    [[nodiscard]] T pop() {
        for (bool waited = false;; waited = true) {
            {
                Threading::AutoLock hold(lock);
                waiting -= waited;
                if (!elements.empty())
                    return take();
                ++waiting;
            }
            available.wait();
        }
    }

    /// Takes the oldest element, waiting at most that long for one; 0 only looks, 0xFFFFFFFF has no limit.
    /// \return false once the time has passed; `value` is untouched then.
    [[nodiscard]] bool timedPop(T& value, unsigned long milliseconds) {
        const std::int64_t start = Clock::nowMicros();
        for (bool waited = false;; waited = true) {
            unsigned long left = 0;
            {
                Threading::AutoLock hold(lock);
                waiting -= waited;
                if (!elements.empty()) {
                    value = take();
                    return true;
                }
                left = remaining(start, milliseconds);
                if (left == 0)
                    return false;
                ++waiting;
            }
            available.timedWait(left);
        }
    }

    /// Of this moment: with other threads about it may be another one already.
    [[nodiscard]] std::size_t size() const {
        Threading::AutoLock hold(lock);
        return elements.size();
    }

    [[nodiscard]] bool empty() const { return size() == 0; }

private:
    T take() ZENTARA_REQUIRES(lock) {
        T oldest = std::move(elements.front());
        elements.pop_front();
        // Two pushes may have set the one signal once: whoever takes an element wakes the next in turn.
        if (!elements.empty() && waiting != 0)
            available.set();
        return oldest;
    }

    static unsigned long remaining(std::int64_t start, unsigned long milliseconds) noexcept {
        if (milliseconds == 0 || milliseconds >= 0xFFFFFFFF)
            return milliseconds;
        const std::int64_t left =
            static_cast<std::int64_t>(milliseconds) * 1000 - (Clock::nowMicros() - start);
        return left > 0 ? static_cast<unsigned long>((left + 999) / 1000) : 0;
    }

    mutable Threading::Mutex lock;
    std::deque<T> elements ZENTARA_GUARDED_BY(lock); ///< the oldest in front
    /// How many threads wait for `available`, or are about to. With 0 nobody is woken, so each counts himself before he
    /// lets go of the lock, and out again once he has it back.
    std::size_t waiting ZENTARA_GUARDED_BY(lock) = 0;
    Threading::Signal available; ///< wakes one; it may do so for nothing, so whoever wakes looks again
};

} // namespace Zentara::Utils::Collection
