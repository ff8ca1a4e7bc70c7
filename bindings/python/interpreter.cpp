#include "bindings/python/interpreter.h"

#include <atomic>
#include <vector>

#include "bindings/python/values.h"

namespace Zentara::Python {
namespace {

using Clock = std::chrono::steady_clock;

/// How long the end of the interpreter waits for streams and cameras.
constexpr std::chrono::milliseconds patience{2000};

std::atomic<bool> isUsed{false};
std::atomic<bool> isForked{false};
std::atomic<bool> hasBegunToEnd{false};
std::atomic<unsigned> forkCount{0};

/// Something that the end of the interpreter ends.
struct Open {
    std::weak_ptr<void> thing;
    std::function<void(void*)> end;
};

/// Who is outside, without the interpreter's lock. Never destroyed: threads may outlive the static objects.
struct Outside {
    std::mutex lock;
    std::condition_variable changed;
    unsigned threads = 0;           // guarded by `lock`: between leave() and the end of comeBack()
    unsigned returning = 0;         // guarded by `lock`: of these, waiting for the interpreter's lock
    bool isGone = false;            // guarded by `lock`: nobody may return any more
    std::vector<Open> open;         // guarded by `lock`
    std::vector<std::string> notes; // guarded by `lock`
};
std::atomic<Outside*> current{new Outside};
Outside& outside() { return *current; }

/// Ends everything at once, each on a thread of its own, and waits for all until the deadline.
void endAll(std::vector<Open> all, Clock::time_point deadline) {
    struct Count {
        std::mutex lock;
        std::condition_variable changed;
        std::size_t left = 0;
    };
    const auto count = std::make_shared<Count>();
    count->left = all.size();
    for (Open& one : all) {
        std::thread([count, one = std::move(one)] {
            try {
                if (const std::shared_ptr<void> thing = one.thing.lock())
                    one.end(thing.get());
            } catch (const std::exception& failure) {
                notes()(failure.what());
            } catch (...) { // there is nothing to tell of it
            }
            const std::lock_guard hold(count->lock);
            --count->left;
            count->changed.notify_all();
        }).detach();
    }
    std::unique_lock hold(count->lock);
    if (!count->changed.wait_until(hold, deadline, [&count] { return count->left == 0; }))
        notes()("what Python had open has not ended within 2 s; it is left behind");
}

/// Python's atexit. Threads that wait in a stream are woken and go back into Python, where the interpreter deals with
/// them; those that do not come within the time never return.
void endInterpreter() {
    if (hasBegunToEnd.exchange(true))
        return;
    Outside& all = outside();
    PyThreadState* const state = PyEval_SaveThread();
    {
        const Clock::time_point deadline = Clock::now() + patience;
        std::unique_lock hold(all.lock);
        std::vector<Open> open = std::move(all.open);
        hold.unlock();
        endAll(std::move(open), deadline);
        hold.lock();
        all.changed.wait_until(hold, deadline, [&all] { return all.threads == 0; });
        all.changed.wait(hold, [&all] { return all.returning == 0; }); // the interpreter's lock is free: soon
        all.isGone = true;
    }
    PyEval_RestoreThread(state);
    tellNotes();
}

} // namespace

void requireUsable() {
    if (isForked)
        throw Host::Failure(
            Host::Failure::Usage, "cannot use cameras in a forked process",
            "the process that it was forked from had used cameras, whose threads did not come along",
            "fork before the first use, or start processes with multiprocessing's \"spawn\"");
    if (hasBegunToEnd)
        throw Host::Failure(Host::Failure::Usage, "cannot use cameras any more", "the interpreter is ending");
    isUsed = true;
}

unsigned forks() noexcept { return forkCount; }

bool isEnding() noexcept { return hasBegunToEnd; }

bool isLeftBehind() noexcept { return isForked || hasBegunToEnd; }

Host::Note notes() {
    return [](const std::string& text) {
        const std::lock_guard hold(outside().lock);
        outside().notes.push_back(text);
    };
}

void checkSignals() {
    if (PyErr_CheckSignals() != 0)
        throw py::error_already_set();
}

/// A logger that fails is no failure of what was asked for; Ctrl-C in it is one.
void tellNotes() {
    std::vector<std::string> all;
    {
        const std::lock_guard hold(outside().lock);
        all.swap(outside().notes);
    }
    if (all.empty())
        return;
    try {
        const py::object warn = py::module_::import("logging").attr("getLogger")("zentara").attr("warning");
        for (const std::string& note : all)
            warn("%s", text(note));
    } catch (py::error_already_set& failure) {
        if (!failure.matches(PyExc_Exception))
            throw;
        failure.discard_as_unraisable("zentara's logger");
    }
}

Host::Progress Errand::progress() {
    return [this](std::uint64_t done, std::uint64_t all) {
        const std::lock_guard hold(lock);
        state = {done, all};
        return !isUnwanted;
    };
}

std::pair<std::uint64_t, std::uint64_t> Errand::howFar() const {
    const std::lock_guard hold(lock);
    return state;
}

void Detail::endAtExit(std::weak_ptr<void> thing, std::function<void(void*)> end) {
    Outside& all = outside();
    const std::lock_guard hold(all.lock);
    std::erase_if(all.open, [](const Open& one) { return one.thing.expired(); });
    all.open.push_back({std::move(thing), std::move(end)});
}

PyThreadState* Detail::leave() {
    {
        const std::lock_guard hold(outside().lock);
        if (outside().isGone)
            return nullptr;
        ++outside().threads;
    }
    return PyEval_SaveThread();
}

void Detail::comeBack(PyThreadState* state) {
    if (state == nullptr)
        return;
    Outside& all = outside();
    {
        std::unique_lock hold(all.lock);
        all.changed.wait(hold, [&all] { return !all.isGone; }); // for ever, once it has gone
        ++all.returning;
    }
    PyEval_RestoreThread(state);
    const std::lock_guard hold(all.lock);
    --all.returning;
    --all.threads;
    all.changed.notify_all();
}

void bindInterpreter(py::module_& module) {
    module.def("_forked", [] {
        isForked = isUsed.load();
        ++forkCount;
        current = new Outside; // a thread that did not come along may have held the lock of the other one
    });
    module.def("_end", &endInterpreter);
}

} // namespace Zentara::Python
