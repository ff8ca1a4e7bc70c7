#include "host/cameras/hand.h"

#include <algorithm>
#include <deque>
#include <new>
#include <thread>
#include <vector>

#include <zentara/plugin/call_plugin.h>
#include <zentara/utils/condition.h>
#include <zentara/utils/format.h>
#include <zentara/utils/log_area.h>
#include <zentara/utils/mutex.h>

#include "host/tell.h"

namespace Zentara::Host {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using Utils::Format;
using Utils::Threading::AutoLock;

namespace {

constexpr const char* remedy = "a plug-in or its device hangs: unplug the camera and try again";

std::string secondsText(steady_clock::duration time) {
    return Format("% s") %
           (static_cast<double>(std::chrono::duration_cast<milliseconds>(time).count()) / 1000.0);
}

std::string reasonOf(const std::exception_ptr& failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const std::exception& reason) {
        return std::string(": ") + reason.what();
    } catch (...) {
        return {};
    }
}

void logFailure(const std::string& what, const std::exception_ptr& failure) noexcept {
    try {
        tell({}, "cannot " + what + reasonOf(failure));
    } catch (const std::bad_alloc&) { // there is none for the text either
    }
}

} // namespace

/// Shared by the hand and its thread, which may outlast it; lives as long as the one that goes last.
struct Hand::State final : StepWatcher {
    void begins(const std::string& what) noexcept override;
    void ends() noexcept override;
    [[nodiscard]] std::string timeout() override;

    void serve();
    [[nodiscard]] Job* begin();
    static void perform(Job& job);
    void end();

    /// \return false where there was no memory for the words
    bool name(const std::string& what) noexcept ZENTARA_REQUIRES(lock);
    /// Waits for a change, until `limit` at most. \return false once that time has come
    bool waitUntil(steady_clock::time_point limit) ZENTARA_REQUIRES(lock);
    /// That a caller's limit has passed.
    [[nodiscard]] Failure giveUp(Job& job, milliseconds limit) ZENTARA_REQUIRES(lock);
    /// Who is told of the steps of what is under way; null for nobody.
    [[nodiscard]] StepWatcher* listener() const ZENTARA_REQUIRES(lock);
    /// Tells a watcher that comes, or goes, of the steps that are under way. Not of the first one: that is the job itself,
    /// which the caller's own thread tells of, or nobody.
    void join(StepWatcher* watcher) const ZENTARA_REQUIRES(lock);
    void leave(StepWatcher* watcher) const ZENTARA_REQUIRES(lock);
    /// What is under way: the innermost step. Empty when nothing is.
    [[nodiscard]] std::string words() const ZENTARA_REQUIRES(lock);
    /// The same, and for how long; or that nothing is.
    [[nodiscard]] std::string doing() const ZENTARA_REQUIRES(lock);

    Utils::Threading::Mutex lock;
    Utils::Threading::Condition changed{&lock};
    /// Which have yet to begin, in the order in which they came.
    std::deque<std::unique_ptr<Job>> queue ZENTARA_GUARDED_BY(lock);
    /// The job under way; set and taken by the thread alone, which may therefore use the job without the lock.
    std::unique_ptr<Job> current ZENTARA_GUARDED_BY(lock);
    /// The words of the job under way and of its steps, the outermost first; empty when nothing is under way.
    std::vector<std::string> steps ZENTARA_GUARDED_BY(lock);
    /// The steps within these that have no words, for want of memory.
    std::size_t unnamed ZENTARA_GUARDED_BY(lock) = 0;
    /// Of the destroying thread, while that one waits: is told of what nobody else waits for.
    StepWatcher* last ZENTARA_GUARDED_BY(lock) = nullptr;
    steady_clock::time_point since ZENTARA_GUARDED_BY(lock); ///< when that began
    bool isHung ZENTARA_GUARDED_BY(lock) =
        false; ///< somebody has waited for it in vain; only while it is under way
    bool isEnding ZENTARA_GUARDED_BY(lock) = false; ///< the hand goes: the thread ends with the last job
    bool isRunning ZENTARA_GUARDED_BY(lock) = true; ///< there is a thread
};

// The watcher is called with the lock held: else its caller might give up, and take it away, meanwhile.
void Hand::State::begins(const std::string& what) noexcept {
    AutoLock hold(lock);
    if (unnamed != 0 || !name(what))
        ++unnamed;
    if (StepWatcher* watcher = listener())
        watcher->begins(what);
}

bool Hand::State::name(const std::string& what) noexcept {
    try {
        steps.push_back(what);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

void Hand::State::ends() noexcept {
    AutoLock hold(lock);
    if (unnamed != 0)
        --unnamed;
    else
        steps.pop_back();
    if (StepWatcher* watcher = listener())
        watcher->ends();
}

std::string Hand::State::timeout() {
    AutoLock hold(lock);
    StepWatcher* const watcher = listener();
    return watcher == nullptr ? std::string() : watcher->timeout();
}

StepWatcher* Hand::State::listener() const { return current && current->isAwaited ? current->watcher : last; }

void Hand::State::join(StepWatcher* watcher) const {
    for (std::size_t index = 1; watcher != nullptr && index < steps.size(); ++index)
        watcher->begins(steps[index]);
    for (std::size_t left = unnamed; watcher != nullptr && left != 0; --left)
        watcher->begins(words());
}

void Hand::State::leave(StepWatcher* watcher) const {
    for (std::size_t index = 1; watcher != nullptr && index < steps.size() + unnamed; ++index)
        watcher->ends();
}

std::string Hand::State::words() const { return steps.empty() ? std::string() : steps.back(); }

void Hand::State::serve() {
    watchSteps(this);
    while (Job* job = begin()) {
        perform(*job);
        end();
    }
    watchSteps(nullptr);
    AutoLock hold(lock);
    isRunning = false;
    changed.notifyAll();
}

/// Waits for a job. \return null when there is none any more
Hand::Job* Hand::State::begin() {
    AutoLock hold(lock);
    while (queue.empty()) {
        if (isEnding)
            return nullptr;
        changed.wait();
    }
    current = std::move(queue.front());
    queue.pop_front();
    steps = std::move(current->steps);
    since = steady_clock::now();
    return current.get();
}

void Hand::State::perform(Job& job) {
    const Utils::LogAreaScope scope(job.area);
    try {
        try {
            // A dropped one comes this far nevertheless: its work is to end on this thread.
            if (!job.isDropped)
                job.run();
        } catch (const Failure&) {
            throw; // it is no plug-in's, and has more than a text
        } catch (...) {
            Plugin::rethrowAnew();
        }
    } catch (...) {
        job.failure = std::current_exception();
    }
    job.end();
}

/// What nobody waits for any more ends here: its result may be a plug-in's, and hang as it goes.
void Hand::State::end() {
    std::unique_ptr<Job> unwanted;
    {
        AutoLock hold(lock);
        current->isDone = true;
        if (current->isAwaited)
            static_cast<void>(current.release()); // its caller takes it
        unwanted = std::move(current);
    }
    if (unwanted && unwanted->failure)
        logFailure(unwanted->what, unwanted->failure);
    unwanted.reset();
    // Only now: until then it is the same job that hangs, if it hangs, and is named by these steps.
    AutoLock hold(lock);
    steps.clear();
    isHung = false;
    changed.notifyAll();
}

bool Hand::State::waitUntil(steady_clock::time_point limit) {
    const auto left = std::chrono::ceil<milliseconds>(limit - steady_clock::now()).count();
    if (left <= 0)
        return false;
    // The longest single wait has 32 bits, less one; the caller comes again.
    changed.timedWait(static_cast<unsigned long>(std::min<long long>(left, 1'000'000)));
    return true;
}

Failure Hand::State::giveUp(Job& job, milliseconds limit) {
    job.isAwaited = false;
    if (current.get() == &job) {
        leave(job.watcher);
        isHung = true;
        return Failure(Failure::TimedOut, "cannot " + words(),
                       "it has not come back for " + secondsText(limit), remedy);
    }
    job.isDropped = true;
    // What is under way may have a caller of its own, who waits longer: the hand is hung only without one.
    isHung = isHung || (current && !current->isAwaited);
    return Failure(Failure::TimedOut, "cannot " + job.what, doing(), remedy);
}

std::string Hand::State::doing() const {
    if (steps.empty())
        return "its thread, which has nothing else to do, was not given the time to begin";
    return Format("what came before has not come back for %: %") % secondsText(steady_clock::now() - since) %
           words();
}

Hand::Hand(std::string whose, Note told)
    : owner(std::move(whose)), note(std::move(told)), state(std::make_shared<State>()) {
    // Detached: a thread that hangs in a plug-in can never be joined.
    std::thread served([shared = state] { shared->serve(); });
    own = served.get_id();
    served.detach();
}

Hand::~Hand() {
    const auto limit = steady_clock::now() + patience;
    std::string late;
    {
        AutoLock hold(state->lock);
        state->isEnding = true; // after all that is in the queue
        state->last = stepWatcher();
        state->join(state->last);
        state->changed.notifyAll();
        while (state->isRunning && std::this_thread::get_id() != own && state->waitUntil(limit)) {
        }
        state->leave(state->last);
        state->last = nullptr;
        if (state->isRunning && std::this_thread::get_id() != own)
            late = state->words() + ", for " + secondsText(steady_clock::now() - state->since);
    }
    if (!late.empty())
        tell(note, owner + " is left behind with its thread: it is still to " + late);
}

std::unique_ptr<Hand::Job> Hand::finish(std::unique_ptr<Job> job, milliseconds limit) const {
    const auto end = steady_clock::now() + limit;
    Job* const mine = job.get();
    AutoLock hold(state->lock);
    // At once: whoever would wait for a hand that hangs, would wait in vain each time.
    if (state->isHung)
        throw Failure(Failure::TimedOut, "cannot " + mine->what, state->doing(), remedy);
    mine->isAwaited = true;
    mine->watcher = stepWatcher();
    state->queue.push_back(std::move(job));
    state->changed.notifyAll();
    while (!mine->isDone) {
        if (!state->waitUntil(end))
            throw state->giveUp(*mine, limit);
    }
    std::unique_ptr<Job> finished(mine);
    if (finished->failure)
        std::rethrow_exception(finished->failure);
    return finished;
}

void Hand::enqueue(std::unique_ptr<Job> job) const {
    AutoLock hold(state->lock);
    state->queue.push_back(std::move(job));
    state->changed.notifyAll();
}

std::string Hand::hangsIn() const {
    AutoLock hold(state->lock);
    return state->isHung ? state->words() : std::string();
}

} // namespace Zentara::Host
