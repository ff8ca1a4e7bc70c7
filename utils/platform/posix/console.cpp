#include "utils/platform/console.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace Zentara::Utils::Platform {

namespace {

/// Reports single keys, not only finished lines, while it lives.
class KeyByKey {
public:
    KeyByKey() noexcept {
        changed = tcgetattr(STDIN_FILENO, &saved) == 0 && (saved.c_lflag & ICANON) != 0;
        if (!changed)
            return;
        termios raw = saved;
        raw.c_lflag &= ~static_cast<tcflag_t>(ICANON);
        tcsetattr(STDIN_FILENO, TCSANOW, &raw);
    }
    ~KeyByKey() {
        if (changed)
            tcsetattr(STDIN_FILENO, TCSANOW, &saved);
    }
    KeyByKey(const KeyByKey&) = delete;
    KeyByKey& operator=(const KeyByKey&) = delete;

private:
    termios saved;
    bool changed;
};

} // namespace

bool keyWaiting() noexcept {
    // A background process that touches the terminal's settings is stopped by the system.
    if (isatty(STDIN_FILENO) == 0 || tcgetpgrp(STDIN_FILENO) != getpgrp())
        return false;
    const KeyByKey keyByKey;
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, 0) == 1 && (input.revents & POLLIN) != 0;
}

} // namespace Zentara::Utils::Platform
