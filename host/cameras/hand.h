#pragma once

#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include <zentara/host/note.h>
#include <zentara/host/step_watcher.h>
#include <zentara/utils/log_area.h>

#include "host/attempt.h"

namespace Zentara::Host {

/// The thread that does a camera's calls into plug-ins which may hang: create, initialise, start, stop, dispose. Whoever
/// calls waits for a limited time only. One call is under way at a time, in the order in which they came.
///
///            call(), leave()            it came back in time
///     idle ------------------> working ----------------------------------> idle
///                                 |  a caller's limit has passed     it came back after all
///                                 +--------------------------> hung ----------------------> idle
///
/// While it is hung, call() fails at once and names what hangs; what comes back late is dropped. The work owns all that
/// it touches, by shared pointers: one that never comes back is left behind with its objects and its thread, so the
/// library must not be unloaded then.
///
/// The steps of the work (`attempt`) are told to the watcher of the thread that waits for it, and the innermost one is what
/// a call that does not come back is named by.
///
/// Safe, but for the destructor. Must not be called on its own thread.
class Hand final {
public:
    /// How long a destructor waits at most.
    static constexpr std::chrono::milliseconds patience{2000};

    /// \param whose for notes: "LEFT SIM0570" \param told is told what is left behind; called on the destroying thread
    Hand(std::string whose, Note told);

    /// Waits until all is done, `patience` at most, and tells of what has not come back. On the hand's own thread it does
    /// not wait.
    ~Hand();
    Hand(const Hand&) = delete;
    Hand& operator=(const Hand&) = delete;

    /// Does the work on the hand's thread and returns what it returns. What it throws passes through, as an exception
    /// that needs no plug-in any more. The work is destroyed on the hand's thread as soon as it has been done.
    /// \param limit from now on; other calls that are under way count
    /// \param what is attempted, for messages: "open LEFT through MOCKDEPTH_IMPL"
    /// \throws Failure (TimedOut) when it has not come back within the limit, or the hand is hung
    template<typename Work>
    std::invoke_result_t<Work&> call(std::chrono::milliseconds limit, const std::string& what,
                                     Work work) const {
        using Result = std::invoke_result_t<Work&>;
        auto job = std::make_unique<TypedJob<Work, Result>>(what, std::move(work));
        const std::unique_ptr<Job> done = finish(std::move(job), limit);
        if constexpr (!std::is_void_v<Result>)
            return std::move(*static_cast<TypedJob<Work, Result>&>(*done).result);
    }

    /// The same as a step that the calling thread's watcher is told of; what it throws leaves as attempt() has it.
    template<typename Work>
    std::invoke_result_t<Work&> step(std::chrono::milliseconds limit, const std::string& what,
                                     Work work) const {
        const Step watched(what);
        try {
            return call(limit, what, std::move(work));
        } catch (...) {
            rethrowAsFailure(what);
        }
    }

    /// Has the work done when its turn comes, without waiting, also when the hand is hung or goes: to let go of objects.
    /// What it throws is logged.
    template<typename Work>
    void leave(const std::string& what, Work work) const {
        enqueue(std::make_unique<TypedJob<Work, void>>(what, std::move(work)));
    }

    /// What has not come back within its caller's limit; empty when nothing hangs.
    [[nodiscard]] std::string hangsIn() const;

private:
    /// Belongs to the hand's thread until it is done, then to its caller; if that one has gone, it never leaves the
    /// thread. What the thread needs to serve it is there before it is handed over.
    struct Job {
        explicit Job(std::string text) : what(std::move(text)), steps{what} {}
        virtual ~Job() = default;
        Job(const Job&) = delete;
        Job& operator=(const Job&) = delete;
        virtual void run() = 0;
        virtual void end() = 0; ///< lets go of the work; it has run, or threw

        const std::string what;
        const Utils::LogArea area =
            Utils::LogAreaScope::current(); ///< the caller's: what is logged is about that
        std::vector<std::string> steps;     ///< its words, until it begins
        std::exception_ptr failure;         ///< what run() threw
        // Guarded by the state's lock.
        bool isAwaited = false;         ///< its caller waits
        bool isDone = false;            ///< it is the caller's, if that one waits
        StepWatcher* watcher = nullptr; ///< of the caller, while that one waits; may be null
        bool isDropped = false;         ///< its caller has gone before it began: it is not run
    };

    template<typename Work, typename Result>
    struct TypedJob final : Job {
        TypedJob(std::string text, Work todo) : Job(std::move(text)), work(std::move(todo)) {}
        void run() override {
            if constexpr (std::is_void_v<Result>)
                (*work)();
            else
                result.emplace((*work)());
        }
        void end() override { work.reset(); }

        std::optional<Work> work;
        std::conditional_t<std::is_void_v<Result>, std::nullptr_t, std::optional<Result>> result{};
    };

    struct State;

    [[nodiscard]] std::unique_ptr<Job> finish(std::unique_ptr<Job> job,
                                              std::chrono::milliseconds limit) const;
    void enqueue(std::unique_ptr<Job> job) const;

    const std::string owner;
    const Note note;
    const std::shared_ptr<State> state; ///< the thread's as well
    std::thread::id own;                ///< of that thread; set once
};

} // namespace Zentara::Host
