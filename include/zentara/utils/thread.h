#pragma once

#include <zentara/export.h>

#include <memory>

namespace Zentara::Utils::Threading {

class Runnable;

/// Runs a Runnable on a named thread of its own. Borrows the runnable, which must outlive the running thread.
/// Order of calls: start(), then stop() or exit() and wait(); a finished thread may be started again. Safe,
/// save for the destructor.
///
///             start()                run() returns, or throws, which is logged
///     None ------------> Running -------------------------------------------------> Finished
///                           ^                                                           |
///                           +------------------------- start() ------------------------+
class ZENTARA_API Thread {
public:
    /// \param runnable the work; null gives a thread that ends at once.
    /// \param argument passed to Runnable::run().
    /// \param name shown by debuggers; null is no name.
    Thread(Runnable* runnable, void* argument, const char* name);

    /// Asks nothing and waits for nothing: a thread that still runs is detached and keeps using its runnable.
    virtual ~Thread();
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// Starts the thread, forgetting earlier exit requests. Does nothing while the thread runs.
    /// \param waitUntilRunning true to return only after the runnable has been entered.
    virtual void start(bool waitUntilRunning);

    /// Asks a running thread to end, as exit() does.
    /// \param waitUntilFinished true to wait() as well.
    virtual void stop(bool waitUntilFinished);

    /// Waits without limit until the thread has ended. Returns at once when it was never started, and on the
    /// thread itself.
    virtual void wait();

    /// Asks the runnable to end through Runnable::exit(), on the calling thread. Does not wait.
    virtual void exit();

    /// True once exit() or stop() was called and until the next start().
    [[nodiscard]] virtual bool exitRequested() const;

protected:
    /// Takes effect with the next start().
    virtual void setName(const char* name);

    /// Valid until the next setName().
    [[nodiscard]] virtual const char* getName() const;

    /// The entry point of the system thread: runs the runnable and lets no exception out.
    static void execute(void* run);

private:
    struct Run;
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Utils::Threading
