#pragma once

#include <zentara/export.h>

#include <memory>

namespace Zentara::Utils::Threading {

class Thread;

/// The work that a Thread runs. Derive from it, put the work into run(), and look at exitRequested() between
/// steps. It must outlive the thread that runs it. Safe, save for what run() itself does.
///
///           Thread::start()           exit()                      run() returns
///     Idle -----------------> Running -------> asked to end ----------------------> Idle
///                                |                                                   ^
///                                +------------------- run() returns -----------------+
class ZENTARA_API Runnable {
public:
    virtual ~Runnable();
    Runnable(const Runnable&) = delete;
    Runnable& operator=(const Runnable&) = delete;

    /// The work. Runs on the new thread; its end is the thread's end.
    /// \param argument what the Thread was constructed with.
    /// \return a value for the overriding class's own use; Thread ignores it.
    virtual void* run(void* argument) = 0;

    /// Asks the work to end. Does not wait. An override that must wake a blocked run() also calls this one.
    virtual void exit();

    /// True between enter() and leave().
    [[nodiscard]] virtual bool running() const;

protected:
    Runnable();

    /// Marks the work as running. Thread calls it before run(); calls may nest.
    virtual void enter();
    /// Ends one enter(). Thread calls it after run(), also when run() throws.
    virtual void leave();
    /// True once exit() was called and until the next Thread::start().
    [[nodiscard]] virtual bool exitRequested() const;

private:
    friend class Thread;
    void forgetExitRequest();

    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Utils::Threading
