#include "tools/zentara/interrupt.h"

#include <csignal>

namespace Zentara::Tool {
namespace {

volatile std::sig_atomic_t noted = 0;

extern "C" void noteInterrupt(int) {
    noted = 1;
    std::signal(SIGINT, SIG_DFL);
}

} // namespace

InterruptWatch::InterruptWatch() {
    noted = 0;
    previous = std::signal(SIGINT, noteInterrupt);
    if (previous == SIG_IGN)
        std::signal(SIGINT, SIG_IGN); // started in the background: Ctrl-C is not meant for this process
}

InterruptWatch::~InterruptWatch() {
    if (previous != SIG_ERR)
        std::signal(SIGINT, previous);
}

bool InterruptWatch::interrupted() const noexcept { return noted != 0; }

} // namespace Zentara::Tool
