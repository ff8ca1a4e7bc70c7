#pragma once

#include <string>

#include <zentara/host/export.h>

namespace Zentara::Host {

/// Is told of each step that may hang because it calls into a plug-in: who ends a process, or tells a person what it
/// waits for, knows so what it is at. Called on the watched thread, or on another one while the watched one waits for it;
/// it must be quick and throw nothing, and call nothing of this library.
class ZENTARA_HOST_API StepWatcher {
public:
    StepWatcher() = default;
    StepWatcher(const StepWatcher&) = delete;
    StepWatcher& operator=(const StepWatcher&) = delete;
    virtual ~StepWatcher();

    /// \param what is attempted: "open LEFT through MOCKDEPTH_IMPL". Steps may stand one in the other.
    virtual void begins(const std::string& what) noexcept = 0;
    /// The innermost step has ended.
    virtual void ends() noexcept = 0;
    /// A step that is ending failed for no reason that it tells: the time-out that was logged since it began, which then
    /// is the reason; empty for none, or where nobody reads the log.
    [[nodiscard]] virtual std::string timeout() = 0;
};

/// Who watches the steps of the calling thread from now on; null for nobody. It is borrowed.
ZENTARA_HOST_API void watchSteps(StepWatcher* watcher) noexcept;

/// Who watches the calling thread; null for nobody.
[[nodiscard]] ZENTARA_HOST_API StepWatcher* stepWatcher() noexcept;

} // namespace Zentara::Host
