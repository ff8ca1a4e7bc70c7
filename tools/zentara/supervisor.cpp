#include "tools/zentara/supervisor.h"

#include <cstdio>
#include <exception>
#include <utility>

#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

#include "tools/zentara/console.h"
#include "tools/zentara/interrupt.h"
#include "tools/zentara/tool_log.h"
#include "utils/platform/program.h"

namespace Zentara::Tool {

using Utils::Format;
using Utils::Threading::AutoLock;

namespace {

constexpr unsigned long glanceMilliseconds = 50;
constexpr std::int64_t politeMicros = 200'000; ///< in which work that heeds an interrupt has ended
constexpr std::int64_t terminationMicros =
    2'000'000; ///< in which work is finished when the process is to end

/// The supervisor of this thread.
thread_local Supervisor* own = nullptr;

/// Past the console, which may be the supervised thread's.
void say(const std::string& text) { std::fputs(("zentara: " + text + "\n").c_str(), stderr); }

} // namespace

Supervisor::Supervisor(Console& target, double seconds)
    : console(target), patienceMicros(static_cast<std::int64_t>(seconds * 1e6)),
      thread(this, nullptr, "zentara watch") {
    own = this;
    Host::watchSteps(this);
    thread.start(false);
}

Supervisor::~Supervisor() {
    thread.stop(true);
    Host::watchSteps(nullptr);
    own = nullptr;
}

/// Calls into no plug-in and waits for none, so that it comes round whatever hangs.
void* Supervisor::run(void*) {
    while (!exitRequested()) {
        wake.timedWait(glanceMilliseconds);
        if (ToolLog* log = ToolLog::current())
            log->show();
        AutoLock hold(lock);
        look();
    }
    return nullptr;
}

void Supervisor::exit() {
    Runnable::exit();
    wake.set();
}

/// What becomes of Ctrl-C, and of work that does not come back:
///
///     working --- Ctrl-C ---> asked ------- 0.2 s ------> shown
///        |                      |                           |
///        | one step takes       | Ctrl-C once more, or 2 s after a polite request to end
///        | too long             v                           |
///        +--------------> endProcess() <--------------------+
///
/// Work that heeds the first Ctrl-C ends by itself, and nothing of this is seen.
void Supervisor::look() {
    const std::int64_t now = Utils::Clock::nowMicros();
    const Interrupts interrupts = InterruptWatch::sinceItBegan();
    if (interrupts.count == 0) {
        interruptedAt = 0;
        shown = false;
    } else {
        if (interruptedAt == 0)
            interruptedAt = now;
        if (interrupts.count > 1 || (interrupts.isTermination && now - interruptedAt > terminationMicros))
            endProcess({Failure::Interrupted, steps.empty() ? std::string("interrupted, and ended at once")
                                                            : "interrupted while it was to " + doing()});
        if (!shown && now - interruptedAt > politeMicros)
            showInterrupt();
    }
    if (!steps.empty() && now - since > patienceMicros)
        endProcess(
            {Failure::TimedOut, "cannot " + doing(),
             Format("it has not come back for % s") % (static_cast<double>(patienceMicros) / 1e6),
             "a plug-in or its device hangs: unplug the camera and try again; 'zentara plugins' tests the "
             "plug-ins, --patience gives them more time"});
}

void Supervisor::showInterrupt() {
    shown = true;
    say((steps.empty() ? std::string("interrupted; finishing what was begun")
                       : "interrupted; it is to " + doing() + ", and waits for that") +
        "; Ctrl-C once more ends it at once");
}

/// With the lock held: the supervised thread cannot leave its step any more.
void Supervisor::endProcess(const Host::Failure& why) {
    if (rescue && !steps.empty()) {
        try {
            rescue();
        } catch (const std::exception& failure) {
            say(std::string("what had come could not be kept: ") + failure.what());
        }
    }
    if (ToolLog* log = ToolLog::current())
        log->show();
    if (steps.empty()) { // the console may be in use
        say(why.what());
        for (const std::string& line : halfDone)
            say("  " + line);
    } else {
        tellFailure(console, {why.code(), why.message(), why.cause(), why.remedy(), halfDone});
        console.out.flush();
    }
    std::fflush(nullptr);
    Utils::Platform::endProcess(why.code());
}

std::string Supervisor::doing() const {
    std::string text;
    for (const Begun& step : steps)
        text += (text.empty() ? "" : ": ") + step.what;
    return text;
}

void Supervisor::begins(const std::string& what) noexcept {
    ToolLog* log = ToolLog::current();
    const std::size_t logged = log == nullptr ? 0 : log->log().end();
    AutoLock hold(lock);
    steps.push_back({what, logged});
    since = Utils::Clock::nowMicros();
}

void Supervisor::ends() noexcept {
    AutoLock hold(lock);
    steps.pop_back();
    since = Utils::Clock::nowMicros();
}

std::string Supervisor::timeout() {
    ToolLog* log = ToolLog::current();
    std::size_t logged = 0;
    {
        AutoLock hold(lock);
        if (log == nullptr || steps.empty())
            return {};
        logged = steps.back().logged;
    }
    return log->log().timeoutSince(logged);
}

Rescue::Rescue(std::function<void()> action) : supervisor(own) {
    if (supervisor == nullptr)
        return;
    AutoLock hold(supervisor->lock);
    supervisor->rescue = std::move(action);
}

Rescue::~Rescue() {
    if (supervisor == nullptr)
        return;
    AutoLock hold(supervisor->lock);
    supervisor->rescue = nullptr;
}

HalfDone::HalfDone(std::vector<std::string> lines) : supervisor(own) {
    if (supervisor == nullptr)
        return;
    AutoLock hold(supervisor->lock);
    supervisor->halfDone = std::move(lines);
}

HalfDone::~HalfDone() {
    if (supervisor == nullptr)
        return;
    AutoLock hold(supervisor->lock);
    supervisor->halfDone.clear();
}

} // namespace Zentara::Tool
