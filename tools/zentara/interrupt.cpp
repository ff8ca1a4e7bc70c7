#include "tools/zentara/interrupt.h"

#include <atomic>
#include <csignal>
#include <iterator>

namespace Zentara::Tool {
namespace {

constexpr int signals[]{
    SIGINT,
    SIGTERM,
#ifdef SIGHUP // where there are terminals that can hang up
    SIGHUP,
#endif
};

// Windows calls the handler on a thread of its own.
std::atomic<bool> noted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void noteInterrupt(int signal) {
    noted = true;
    std::signal(signal, SIG_DFL);
}

} // namespace

InterruptWatch::InterruptWatch() {
    static_assert(std::size(signals) <= mostSignals);
    noted = false;
    for (std::size_t index = 0; index < std::size(signals); ++index) {
        previous[index] = std::signal(signals[index], noteInterrupt);
        if (previous[index] == SIG_IGN)
            std::signal(signals[index], SIG_IGN); // as in the background: it is not meant for this process
    }
}

InterruptWatch::~InterruptWatch() {
    for (std::size_t index = 0; index < std::size(signals); ++index) {
        if (previous[index] != SIG_ERR)
            std::signal(signals[index], previous[index]);
    }
}

bool InterruptWatch::interrupted() const noexcept { return noted; }

} // namespace Zentara::Tool
