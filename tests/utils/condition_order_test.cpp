#include <zentara/utils/condition.h>

#include <functional>
#include <utility>

#include <gtest/gtest.h>

namespace Zentara::Utils::Threading {
namespace {

/// What happens at the moment when the mutex of the test is given back.
std::function<void()> atRelease;
const Mutex* watched = nullptr;

TEST(ConditionOrder, AWaiterIsKnownBeforeItGivesItsMutexBack) {
    Mutex mutex;
    Condition condition(&mutex);
    watched = &mutex;
    for (const bool all : {false, true}) {
        atRelease = [&] { all ? condition.notifyAll() : condition.notify(false); };
        EXPECT_EQ(condition.timedWait(0), 0) << all;
    }
    EXPECT_EQ(condition.timedWait(0), -1) << "and the notification is used up";
}

} // namespace

// One thread alone runs here, with these in the place of the library's own.
Mutex::~Mutex() = default;
void Mutex::acquire() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS {}
void Mutex::release() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS {
    if (const auto happens = this == watched ? std::exchange(atRelease, nullptr) : nullptr)
        happens();
}
void RecursiveMutex::acquire() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS { mutex.acquire(); }
void RecursiveMutex::release() noexcept ZENTARA_NO_THREAD_SAFETY_ANALYSIS { mutex.release(); }

} // namespace Zentara::Utils::Threading
