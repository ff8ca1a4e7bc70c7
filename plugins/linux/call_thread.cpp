#include "plugins/linux/call_thread.h"

#include <cerrno>
#include <deque>
#include <dlfcn.h>
#include <exception>
#include <map>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/condition.h>
#include <zentara/utils/format.h>
#include <zentara/utils/mutex.h>

#include "plugins/linux/kernel.h"

namespace Zentara::Linux {

using Utils::Format;
using Utils::Threading::AutoLock;

namespace {

constexpr unsigned long farewellMilliseconds = 250; // closing a camera that answers takes a few

/// Keeps this library in the process for the thread that is left behind in it.
void pinLibrary() noexcept {
    Dl_info self{};
    if (dladdr(reinterpret_cast<const void*>(&pinLibrary), &self) != 0 && self.dli_fname != nullptr)
        static_cast<void>(dlopen(self.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE));
}

/// Waits for a change, until `end` in microseconds at most. \return false once that time has come
bool waitUntil(Utils::Threading::Condition& changed, std::int64_t end) {
    const std::int64_t left = end - Utils::Clock::nowMicros();
    if (left <= 0)
        return false;
    changed.timedWait(static_cast<unsigned long>((left + 999) / 1000));
    return true;
}

} // namespace

/// What the devices of one camera know of each other: the calls that it owes an answer to.
struct CallThread::Camera {
    /// Shared by all devices with the same name.
    static std::shared_ptr<Camera> named(const std::string& name) {
        // Never destroyed: a thread that was left behind may come back while the process ends.
        static auto& lock = *new Utils::Threading::Mutex;
        static auto& cameras = *new std::map<std::string, std::weak_ptr<Camera>>;
        const AutoLock hold(lock);
        std::erase_if(cameras, [](const auto& known) { return known.second.expired(); });
        std::shared_ptr<Camera> camera = cameras[name].lock();
        if (!camera)
            cameras[name] = camera = std::make_shared<Camera>();
        return camera;
    }

    void owes(const Call* call, std::string what) {
        const AutoLock hold(lock);
        owed[call] = {std::move(what), Utils::Clock::nowMicros()};
    }
    void answers(const Call* call) {
        const AutoLock hold(lock);
        owed.erase(call);
    }
    [[nodiscard]] std::string silence() {
        const AutoLock hold(lock);
        if (owed.empty())
            return {};
        const auto& [what, since] = owed.begin()->second;
        return Format("it has not answered for % s: %") %
               (static_cast<double>((Utils::Clock::nowMicros() - since) / 100'000) / 10 +
                patienceMilliseconds / 1000.0) %
               what;
    }

private:
    struct Debt {
        std::string what;
        std::int64_t since = 0; ///< when it was given up, in microseconds of the monotonic clock
    };

    Utils::Threading::Mutex lock;
    std::map<const Call*, Debt>
        owed ZENTARA_GUARDED_BY(lock); ///< calls that have begun, and whose callers gave up
};

struct CallThread::Call {
    std::string what;
    // The thread's from the beginning until `done`, then the caller's who waits.
    std::function<void()> work;
    std::shared_ptr<void> result; ///< goes with the work when nobody waits
    std::exception_ptr failure;
    // Guarded by the state's lock.
    bool awaited = false; ///< its caller waits
    bool cancelled = false;
    bool dropped = false; ///< its caller has gone before it began: it is not made
    bool done = false;
};

struct CallThread::State {
    explicit State(std::shared_ptr<Camera> shared) : camera(std::move(shared)) {}

    void serve();
    [[nodiscard]] std::shared_ptr<Call> begin();
    [[nodiscard]] bool isDropped(const Call& call) {
        const AutoLock hold(lock);
        return call.dropped;
    }
    /// What the call owns goes on the thread as well when it is not made.
    void drop(const std::shared_ptr<Call>& call) {
        const AutoLock hold(lock);
        call->dropped = true;
        queue.push_back(call);
        changed.notifyAll();
    }
    /// \return whether it has come back in time
    [[nodiscard]] bool await(const std::shared_ptr<Call>& call);

    const std::shared_ptr<Camera> camera;
    Utils::Threading::Mutex lock;
    Utils::Threading::Condition changed{&lock};
    std::deque<std::shared_ptr<Call>> queue ZENTARA_GUARDED_BY(lock); ///< which have yet to begin
    /// Which has begun; null when the thread has let go of its work and its result, not only when it came back.
    std::shared_ptr<Call> current ZENTARA_GUARDED_BY(lock);
    bool ending ZENTARA_GUARDED_BY(lock) =
        false; ///< the device has gone: the thread ends when the queue is empty
    bool running ZENTARA_GUARDED_BY(lock) = true; ///< the thread has not come to its end, and may touch this
};

std::shared_ptr<CallThread::Call> CallThread::State::begin() {
    const AutoLock hold(lock);
    while (queue.empty()) {
        if (ending)
            return nullptr;
        changed.wait();
    }
    current = std::move(queue.front());
    queue.pop_front();
    return current;
}

void CallThread::State::serve() {
    while (const std::shared_ptr<Call> call = begin()) {
        try {
            if (!isDropped(*call))
                call->work();
        } catch (...) {
            call->failure = std::current_exception();
        }
        bool unwanted = false;
        {
            const AutoLock hold(lock);
            call->done = true;
            unwanted = !call->awaited;
        }
        call->work = nullptr;
        if (unwanted)
            call->result.reset();
        const AutoLock hold(lock);
        camera->answers(call.get());
        current.reset();
        changed.notifyAll();
    }
    const AutoLock hold(lock);
    running = false;
    changed.notifyAll();
}

CallThread::CallThread(const std::string& camera, std::string name)
    : label(std::move(name)), state(std::make_shared<State>(Camera::named(camera))),
      thread([shared = state] { shared->serve(); }) {}

CallThread::~CallThread() {
    bool ended = false;
    {
        const std::int64_t end = Utils::Clock::nowMicros() + std::int64_t{farewellMilliseconds} * 1000;
        const AutoLock hold(state->lock);
        state->ending = true;
        state->changed.notifyAll();
        while (state->running && waitUntil(state->changed, end)) {
        }
        ended = !state->running;
    }
    if (ended) {
        thread.join();
        return;
    }
    pinLibrary();
    thread.detach();
}

bool CallThread::State::await(const std::shared_ptr<Call>& call) {
    const std::int64_t end = Utils::Clock::nowMicros() + std::int64_t{patienceMilliseconds} * 1000;
    const AutoLock hold(lock);
    queue.push_back(call);
    changed.notifyAll();
    while (!call->done && !call->cancelled && waitUntil(changed, end)) {
    }
    if (call->done) {
        while (current == call)
            changed.wait(); // until the thread has let go of the work
        return true;
    }
    call->awaited = false;
    call->dropped = current != call;
    if (current)
        camera->owes(current.get(), current->what);
    return false;
}

std::shared_ptr<void> CallThread::finish(const std::string& what, std::function<void()> work,
                                         std::shared_ptr<void> result) {
    const auto call = std::make_shared<Call>();
    call->what = label + ": " + what;
    call->work = std::move(work);
    call->result = std::move(result);
    const std::string owed = state->camera->silence();
    if (!owed.empty()) {
        state->drop(call);
        throw Plugin::IOPluginException(Format("%: cannot %: the camera isn't answering; %: %") % label %
                                        what % owed % errorWords(ETIMEDOUT));
    }
    call->awaited = true;
    if (!state->await(call))
        throw Plugin::TimeoutPluginException(
            Format("%: cannot %: the camera has not answered for % s; unplug it if it stays silent") % label %
            what % (patienceMilliseconds / 1000.0));
    // The device's thread may let go of the call later than this one, and has no share of what is thrown then.
    if (const std::exception_ptr failure = std::exchange(call->failure, nullptr))
        std::rethrow_exception(failure);
    return call->result;
}

void CallThread::leave(const std::string& what, std::function<void()> work) {
    const auto call = std::make_shared<Call>();
    call->what = label + ": " + what;
    call->work = std::move(work);
    const AutoLock hold(state->lock);
    state->queue.push_back(call);
    state->changed.notifyAll();
}

bool CallThread::cancel() {
    const AutoLock hold(state->lock);
    bool any = false;
    const auto give = [&any](const std::shared_ptr<Call>& call) {
        if (call && call->awaited && !call->done)
            any = call->cancelled = true;
    };
    give(state->current);
    for (const auto& call : state->queue)
        give(call);
    if (any)
        state->changed.notifyAll();
    return any;
}

} // namespace Zentara::Linux
