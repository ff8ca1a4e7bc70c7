#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <zentara/host/failure.h>
#include <zentara/host/step_watcher.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/runnable.h>
#include <zentara/utils/signal.h>
#include <zentara/utils/thread.h>

namespace Zentara::Tool {

struct Console;

/// Ends the process when the thread that made it does not come back: a call into a plug-in may hang, and nobody else
/// could end it then. It does so when one step has taken longer than it may, when Ctrl-C is pressed for the second time,
/// and some time after the system's polite request to end. What hangs is said, and what stands half done; what is whole
/// is finished first, and the exit code is 7 or, if somebody asked for the end, 130. A first Ctrl-C that the work does
/// not heed at once is shown.
/// One at a time.
class Supervisor final : public Host::StepWatcher, private Utils::Threading::Runnable {
public:
    /// \param seconds how long one step may take
    Supervisor(Console& target, double seconds);
    ~Supervisor() override;
    Supervisor(const Supervisor&) = delete;
    Supervisor& operator=(const Supervisor&) = delete;

    /// Time counts from the last beginning or end of any step. Once the process is being ended, a step that comes back
    /// after all does not go on.
    void begins(const std::string& what) noexcept override;
    void ends() noexcept override;
    [[nodiscard]] std::string timeout() override;

private:
    friend class Rescue;
    friend class HalfDone;

    /// A step that may hang, and where the log stood when it began.
    struct Begun {
        std::string what;
        std::size_t logged;
    };

    void* run(void*) override;
    void exit() override;
    void look() ZENTARA_REQUIRES(lock);
    void showInterrupt() ZENTARA_REQUIRES(lock);
    [[noreturn]] void endProcess(const Host::Failure& why) ZENTARA_REQUIRES(lock);
    [[nodiscard]] std::string doing() const ZENTARA_REQUIRES(lock);

    Console& console;
    const std::int64_t patienceMicros;
    Utils::Threading::Signal wake;
    Utils::Threading::Mutex lock;
    std::vector<Begun> steps ZENTARA_GUARDED_BY(lock); ///< the outermost first
    std::int64_t since ZENTARA_GUARDED_BY(lock) = 0;   ///< when a step began or ended last
    std::function<void()> rescue ZENTARA_GUARDED_BY(lock);
    std::vector<std::string> halfDone ZENTARA_GUARDED_BY(lock);
    std::int64_t interruptedAt ZENTARA_GUARDED_BY(lock) = 0;
    bool shown ZENTARA_GUARDED_BY(lock) = false;
    Utils::Threading::Thread thread;
};

/// What is to be finished before the process is ended out of a hanging step, for one scope. The action is called on
/// another thread, while the supervised one sits in the step; it throws what it likes. One at a time.
class Rescue final {
public:
    explicit Rescue(std::function<void()> action);
    ~Rescue();
    Rescue(const Rescue&) = delete;
    Rescue& operator=(const Rescue&) = delete;

private:
    Supervisor* const supervisor;
};

/// What is said when the process is ended within one scope: what stands half done where, and the way back. One at a
/// time.
class HalfDone final {
public:
    explicit HalfDone(std::vector<std::string> lines);
    ~HalfDone();
    HalfDone(const HalfDone&) = delete;
    HalfDone& operator=(const HalfDone&) = delete;

private:
    Supervisor* const supervisor;
};

} // namespace Zentara::Tool
