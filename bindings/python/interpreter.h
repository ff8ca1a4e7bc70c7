#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

#include <pybind11/pybind11.h>
#include <zentara/host/failure.h>
#include <zentara/host/note.h>
#include <zentara/host/progress.h>

/// What stands between the interpreter and the host library: who holds the interpreter's lock, Ctrl-C, fork, and the end
/// of the interpreter. The thread that Python calls on is the only one that ever takes the lock.
///
///              first use            fork                                  atexit
///     unused -------------> used -----------> forked (a child)      used ---------> ending ---------> gone
///                                                                         2 s at most
///
/// While forked, ending or gone, operations throw. Once gone, no thread comes back to the interpreter: it would be ended
/// in the middle of C++ that does not expect it.
namespace Zentara::Python {

namespace py = pybind11;

/// How long a wait goes on before it looks for Ctrl-C.
inline constexpr std::chrono::milliseconds slice{100};

/// To be called first in every operation that cameras or their threads take part in.
/// \throws Host::Failure (Usage) in a child of fork, and when the interpreter ends
void requireUsable();

/// How many forks lie between this process and the one that loaded the module.
[[nodiscard]] unsigned forks() noexcept;

/// Whether atexit has begun.
[[nodiscard]] bool isEnding() noexcept;

/// Whether objects are to be left behind instead of being destroyed: their threads are not in this process, or the
/// interpreter has gone.
[[nodiscard]] bool isLeftBehind() noexcept;

/// For the host library: keeps what it notes until a thread of Python's comes by, which gives it to the logger "zentara".
[[nodiscard]] Host::Note notes();
void tellNotes();

/// \throws py::error_already_set after Ctrl-C, on Python's main thread
void checkSignals();

/// Has the thing ended when the interpreter ends, if it is still there: `end` is called on a thread of its own, without
/// the interpreter's lock.
template<typename T>
void endAtExit(const std::shared_ptr<T>& thing, void (*end)(T&));

/// Adds to the module what Python calls at fork and at its end.
void bindInterpreter(py::module_& module);

namespace Detail {
void endAtExit(std::weak_ptr<void> thing, std::function<void(void*)> end);
/// Gives the interpreter's lock away, and takes it back; the latter does not return once the interpreter has gone. Null
/// when it has gone before.
[[nodiscard]] PyThreadState* leave();
void comeBack(PyThreadState* state);
} // namespace Detail

template<typename T>
void endAtExit(const std::shared_ptr<T>& thing, void (*end)(T&)) {
    Detail::endAtExit(thing, [end](void* still) { end(*static_cast<T*>(still)); });
}

namespace Detail {
/// Does the work and comes back, whatever it throws.
template<typename Work>
std::invoke_result_t<Work&> workOutside(PyThreadState*& state, Work& work) {
    using Result = std::invoke_result_t<Work&>;
    std::conditional_t<std::is_void_v<Result>, std::nullptr_t, std::optional<Result>> result{};
    std::exception_ptr failure;
    try {
        if constexpr (std::is_void_v<Result>)
            work();
        else
            result.emplace(work());
    } catch (...) {
        failure = std::current_exception();
    }
    comeBack(state);
    if (failure)
        std::rethrow_exception(failure);
    if constexpr (!std::is_void_v<Result>)
        return std::move(*result);
}
} // namespace Detail

/// Does the work without the interpreter's lock. The work touches nothing of Python.
template<typename Work>
std::invoke_result_t<Work&> released(Work work) {
    PyThreadState* state = Detail::leave();
    return Detail::workOutside(state, work);
}

/// The same for work that asks now and then whether to go on: not after Ctrl-C, nor when the interpreter ends.
template<typename Work>
std::invoke_result_t<Work&, const std::function<bool()>&> waiting(Work work) {
    requireUsable();
    PyThreadState* state = Detail::leave();
    bool isRaised = false;
    const std::function<bool()> goOn = [&state, &isRaised] {
        Detail::comeBack(state);
        isRaised = PyErr_CheckSignals() != 0;
        state = Detail::leave();
        return !isRaised && state != nullptr;
    };
    const auto asked = [&work, &goOn] { return work(goOn); };
    try {
        return Detail::workOutside(state, asked);
    } catch (const Host::Failure&) {
        if (isRaised)
            throw py::error_already_set();
        throw;
    }
}

namespace Detail {
/// Work on a thread of its own. The work owns all that it touches, for its caller may leave it behind.
template<typename Work>
class Job final {
public:
    using Result = std::invoke_result_t<Work&>;

    [[nodiscard]] static std::shared_ptr<Job> start(Work todo) {
        const auto job = std::make_shared<Job>();
        std::thread([job, work = std::optional<Work>(std::move(todo))]() mutable {
            try {
                if constexpr (std::is_void_v<Result>)
                    (*work)();
                else
                    job->result.emplace((*work)());
            } catch (...) {
                job->failure = std::current_exception();
            }
            work.reset();
            const std::lock_guard hold(job->lock);
            job->isDone = true;
            job->ended.notify_all();
        }).detach();
        return job;
    }

    /// Whether it has ended; waits a slice for that.
    [[nodiscard]] bool hasEnded() {
        std::unique_lock hold(lock);
        return ended.wait_for(hold, slice, [this] { return isDone; });
    }
    void waitForEnd() {
        std::unique_lock hold(lock);
        ended.wait(hold, [this] { return isDone; });
    }

    // Once it has ended: what came of it.
    [[nodiscard]] bool hasFailed() const noexcept { return failure != nullptr; }
    Result take() {
        if (failure)
            std::rethrow_exception(failure);
        if constexpr (!std::is_void_v<Result>)
            return std::move(*result);
    }

private:
    std::conditional_t<std::is_void_v<Result>, std::nullptr_t, std::optional<Result>> result{};
    std::exception_ptr failure;
    std::mutex lock;
    std::condition_variable ended;
    bool isDone = false; // guarded by `lock`; after it the rest is the caller's
};

/// Waits for a job without the interpreter's lock. \param look is called now and then with the lock, and may throw:
/// then the job is left behind, and the end of the interpreter gives it the time that it gives to streams
template<typename Work, typename Look>
void await(const std::shared_ptr<Job<Work>>& job, Look look) {
    for (;;) {
        PyThreadState* const state = leave();
        if (state == nullptr)
            throw Host::Failure(Host::Failure::Interrupted, "interrupted", "the interpreter has ended");
        const bool hasEnded = job->hasEnded();
        comeBack(state);
        if (hasEnded)
            return;
        try {
            look();
        } catch (const py::error_already_set&) {
            Python::endAtExit<Job<Work>>(job, [](Job<Work>& left) { left.waitForEnd(); });
            throw;
        }
    }
}
} // namespace Detail

/// Does long work that cannot be asked to end: on a thread of its own, while the caller waits for Ctrl-C as well. What is
/// interrupted goes on alone, up to its own limit, and its result is dropped: so the work owns all that it touches, and
/// what it writes is a file that takes its name once it is whole. For work without cameras, also after a fork.
template<typename Work>
std::invoke_result_t<Work&> aside(Work work) {
    if (isEnding()) // nobody is left to be interrupted
        return work();
    const auto job = Detail::Job<Work>::start(std::move(work));
    Detail::await(job, checkSignals);
    return job->take();
}

/// The same for work with cameras.
template<typename Work>
std::invoke_result_t<Work&> interruptible(Work work) {
    requireUsable();
    const auto job = Detail::Job<Work>::start(std::move(work));
    Detail::await(job, checkSignals);
    tellNotes();
    return job->take();
}

/// What long work and the caller who waits for it tell each other. Safe.
class Errand final {
public:
    /// For the host library: keeps how far it is, and asks for the end once nobody wants it any more.
    [[nodiscard]] Host::Progress progress();

    [[nodiscard]] std::pair<std::uint64_t, std::uint64_t> howFar() const;
    void end() noexcept { isUnwanted = true; }
    [[nodiscard]] bool isWanted() const noexcept { return !isUnwanted; }

private:
    std::atomic<bool> isUnwanted{false};
    mutable std::mutex lock;
    std::pair<std::uint64_t, std::uint64_t> state{0, 0}; // guarded by `lock`
};

/// Does long work on a thread of its own, and tells the caller's `progress` (done, all) meanwhile; may be None. When that
/// returns False or raises, and after Ctrl-C, the work is asked to end.
/// \param work takes the errand, and owns all else that it touches
/// \param finishes whether half of it must not be left behind: Ctrl-C then waits until it has ended, a second one does
///        not. Otherwise it is left behind at once, and ends alone
template<typename Work>
auto reporting(const py::object& progress, bool finishes, Work work) {
    requireUsable();
    const auto errand = std::make_shared<Errand>();
    auto whole = [errand, work = std::move(work)]() mutable { return work(*errand); };
    const auto job = Detail::Job<decltype(whole)>::start(std::move(whole));
    std::optional<py::error_already_set> raised;
    std::pair<std::uint64_t, std::uint64_t> told{0, 0};
    const auto tell = [&] {
        const auto now = errand->howFar();
        if (raised || progress.is_none() || now == std::exchange(told, now))
            return;
        if (progress(now.first, now.second).is(py::bool_(false)))
            errand->end();
    };
    Detail::await(job, [&] {
        try {
            checkSignals();
            tellNotes();
            tell();
        } catch (const py::error_already_set& failure) {
            errand->end();
            if (!finishes || raised)
                throw;
            raised = failure;
        }
    });
    if (raised)
        throw py::error_already_set(*raised);
    tellNotes();
    if (!job->hasFailed())
        tell();
    return job->take();
}

/// An object of the host library that Python holds: it is destroyed without the interpreter's lock.
template<typename T>
class Held final {
public:
    explicit Held(T value) : object(std::make_shared<T>(std::move(value))) {}
    explicit Held(std::shared_ptr<T> made) : object(std::move(made)) {}
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() {
        if (isLeftBehind())
            new std::shared_ptr<T>(std::move(object));
        else
            released([this] { object.reset(); });
    }

    [[nodiscard]] const T& get() const noexcept { return *object; }
    /// For the length of a call: whoever closes or forgets the object meanwhile does not take it from the call.
    [[nodiscard]] std::shared_ptr<T> share() const { return object; }

private:
    std::shared_ptr<T> object;
};

/// An object that reads or writes a file. The copy that a child of fork has is neither used nor destroyed there: place
/// and fate of the file are the parent's affair.
template<typename T>
class OwnFile final {
public:
    explicit OwnFile(std::shared_ptr<T> opened) : object(std::move(opened)) {}
    OwnFile(const OwnFile&) = delete;
    OwnFile& operator=(const OwnFile&) = delete;
    ~OwnFile() {
        if (born != forks())
            new std::shared_ptr<T>(std::move(object));
        else
            released([this] { object.reset(); });
    }

    /// For the length of a call, which Ctrl-C may leave behind.
    /// \throws Host::Failure (Usage) in a child of fork
    [[nodiscard]] std::shared_ptr<T> share() const {
        if (born != forks())
            throw Host::Failure(Host::Failure::Usage, "cannot use the recording in a forked process",
                                "the process that it was forked from has opened it",
                                "open it after the fork");
        return object;
    }

private:
    std::shared_ptr<T> object;
    const unsigned born = forks();
};

} // namespace Zentara::Python
