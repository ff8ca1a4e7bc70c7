#include "io/chips/sleeping_clock.h"

#include <thread>

namespace Zentara::IO {

namespace {

class SleepingClock final : public ChipClock {
public:
    void wait(std::chrono::milliseconds time) override { std::this_thread::sleep_for(time); }
};

} // namespace

ChipClock& sleepingClock() noexcept {
    static SleepingClock clock;
    return clock;
}

} // namespace Zentara::IO
