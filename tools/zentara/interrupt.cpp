#include "tools/zentara/interrupt.h"

#include <atomic>
#include <csignal>
#include <iterator>

#include <zentara/utils/clock.h>
#include <zentara/utils/signal.h>

#include "utils/platform/program.h"

namespace Zentara::Tool {
namespace {

constexpr int signals[]{
    SIGINT,
    SIGTERM,
#ifdef SIGHUP // where there are terminals that can hang up
    SIGHUP,
#endif
};

// Windows calls the handler on a thread of its own, and each time forgets it before.
std::atomic<int> noted = 0;
std::atomic<bool> termination = false;
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

extern "C" void noteInterrupt(int signal) {
    const int count = ++noted;
    if (signal != SIGINT)
        termination = true;
    std::signal(signal, count > 1 ? SIG_DFL : noteInterrupt);
}

void noteConsole() { ++noted; }

} // namespace

InterruptWatch::InterruptWatch() {
    static_assert(std::size(signals) <= mostSignals);
    noted = 0;
    termination = false;
    Utils::Platform::watchConsole(noteConsole);
    for (std::size_t index = 0; index < std::size(signals); ++index) {
        previous[index] = std::signal(signals[index], noteInterrupt);
        if (previous[index] == SIG_IGN)
            std::signal(signals[index], SIG_IGN); // as in the background: it is not meant for this process
    }
}

InterruptWatch::~InterruptWatch() {
    Utils::Platform::watchConsole(nullptr);
    for (std::size_t index = 0; index < std::size(signals); ++index) {
        if (previous[index] != SIG_ERR)
            std::signal(signals[index], previous[index]);
    }
    noted = 0;
}

bool InterruptWatch::interrupted() const noexcept { return noted != 0; }

Interrupts InterruptWatch::sinceItBegan() noexcept { return {noted, termination}; }

bool watchEvery(const WatchTimes& times, const InterruptWatch& interrupt,
                const std::function<bool(double seconds)>& work) {
    constexpr unsigned long sliceMilliseconds = 50;
    const std::int64_t start = Utils::Clock::nowMicros();
    const auto passed = [start] { return static_cast<double>(Utils::Clock::nowMicros() - start) / 1e6; };
    Utils::Threading::Signal never;
    for (double due = 0; times.seconds <= 0 || due <= times.seconds; due += times.interval / 1000.0) {
        while (passed() < due && !interrupt.interrupted())
            never.timedWait(sliceMilliseconds);
        if (interrupt.interrupted())
            return true;
        if (!work(passed()))
            break;
    }
    return false;
}

} // namespace Zentara::Tool
