#include <zentara/utils/thread.h>

#include <zentara/utils/format.h>
#include <zentara/utils/kv_logger.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/runnable.h>
#include <zentara/utils/signal.h>
#include <zentara/utils/thread_base.h>

#include <atomic>
#include <exception>
#include <string>

#include "utils/visible_text.h"

namespace Zentara::Utils::Threading {

/// One start of the thread: what the system thread needs, apart from the Thread that it may outlive.
struct Thread::Run {
    Run(Runnable* work, void* workArgument, std::string threadName)
        : runnable(work), argument(workArgument), name(std::move(threadName)) {}

    Runnable* const runnable;
    void* const argument;
    const std::string name;
    Signal entered;

    /// A runnable that cannot be entered does not work either.
    void execute() noexcept {
        const bool isEntered = attempt(&Run::enter);
        entered.set();
        if (!isEntered)
            return;
        attempt(&Run::work);
        attempt(&Run::leave);
    }

private:
    void enter() {
        if (runnable)
            runnable->enter();
    }
    void work() {
        if (runnable)
            runnable->run(argument);
    }
    void leave() {
        if (runnable)
            runnable->leave();
    }
    /// An exception has nowhere to go from here: it is logged, and the thread goes on to its end. False when
    /// there was one.
    bool attempt(void (Run::*step)()) noexcept {
        try {
            (this->*step)();
            return true;
        } catch (const std::exception& failure) {
            report(failure.what());
        } catch (...) {
            report("unknown exception");
        }
        return false;
    }
    void report(const char* reason) const noexcept {
        try {
            const std::string text =
                Format("thread '%' ended by an exception: %") % visibleText(name) % visibleText(reason);
            if (KVLogger* log = KVLogger::instance()) {
                log->error(text);
                KVLogger::release();
            }
        } catch (...) {
            // Without memory there is no report.
        }
    }
};

struct Thread::Impl {
    Impl(Runnable* work, void* workArgument) : runnable(work), argument(workArgument) {}

    Runnable* const runnable; ///< not owned; may be null
    void* const argument;     ///< not owned
    std::atomic<bool> exitRequested{false};

    mutable Mutex lock; ///< never held while a thread is waited for, nor around the runnable
    std::string name ZENTARA_GUARDED_BY(lock);
    /// The last one; null before the first start.
    std::shared_ptr<ThreadBase> thread ZENTARA_GUARDED_BY(lock);

    std::shared_ptr<ThreadBase> current() const {
        AutoLock hold(lock);
        return thread;
    }
    bool isAlive() const {
        // A reference of its own: another thread may start the next one meanwhile.
        const auto present = current();
        return present && present->getState() != ThreadState_FINISHED;
    }
    std::shared_ptr<Run> startAfter(const std::shared_ptr<ThreadBase>& former);
};

/// Starts the successor of a thread that has been joined, without the lock; null when somebody else did.
std::shared_ptr<Thread::Run> Thread::Impl::startAfter(const std::shared_ptr<ThreadBase>& former) {
    AutoLock hold(lock);
    if (thread != former)
        return nullptr;
    exitRequested = false;
    if (runnable)
        runnable->forgetExitRequest();
    auto run = std::make_shared<Run>(runnable, argument, name);
    auto holder = std::make_unique<std::shared_ptr<Run>>(run);
    thread = std::make_shared<ThreadBase>(&Thread::execute, holder.get(), false);
    // The thread owns it now; had it not come to be, nobody would.
    static_cast<void>(holder.release());
    return run;
}

Thread::Thread(Runnable* runnable, void* argument, const char* name)
    : impl(std::make_unique<Impl>(runnable, argument)) {
    AutoLock hold(impl->lock);
    impl->name = name ? name : "";
}

Thread::~Thread() = default;

void Thread::start(bool waitUntilRunning) {
    std::shared_ptr<Run> run;
    while (!run) {
        const std::shared_ptr<ThreadBase> former = impl->current();
        if (former && former->getState() != ThreadState_FINISHED)
            return;
        if (former)
            former->join();
        run = impl->startAfter(former);
    }
    if (waitUntilRunning)
        run->entered.wait();
}

void Thread::stop(bool waitUntilFinished) {
    if (impl->isAlive())
        exit();
    if (waitUntilFinished)
        wait();
}

void Thread::wait() {
    if (const auto present = impl->current())
        present->join();
}

void Thread::exit() {
    impl->exitRequested = true;
    if (impl->runnable)
        impl->runnable->exit();
}

bool Thread::exitRequested() const { return impl->exitRequested; }

void Thread::setName(const char* name) {
    AutoLock hold(impl->lock);
    impl->name = name ? name : "";
}

const char* Thread::getName() const {
    AutoLock hold(impl->lock);
    return impl->name.c_str();
}

void Thread::execute(void* argument) {
    const std::unique_ptr<std::shared_ptr<Run>> holder(static_cast<std::shared_ptr<Run>*>(argument));
    Run& run = **holder;
    ThreadBase::setDebuggerThreadName(run.name.c_str());
    run.execute();
}

} // namespace Zentara::Utils::Threading
