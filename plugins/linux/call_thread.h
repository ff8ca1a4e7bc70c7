#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

namespace Zentara::Linux {

/// A device's own thread. It makes the calls that the kernel may hold for seconds when a camera doesn't answer, whatever
/// becomes of the process, so that whoever asked for one is free again after `patienceMilliseconds`.
///
/// Calls are made one at a time, in the order in which they came. One that nobody waits for any more goes on, and its
/// answer is dropped with it; until it ends, later calls on the same camera, through whichever of its devices, fail at
/// once. The work owns all that it touches, by shared pointers: its result and its captures are destroyed on this thread
/// when its caller has gone.
///
///            call()                    it came back in time
///     idle ------------> working -------------------------------------> idle
///                           |  its caller gave up          it came back after all
///                           +------------------> silent -------------------------> idle
///
/// Safe, but for the destructor.
class CallThread final {
public:
    /// Less than the 2 s that a caller of the device waits, so that he is told what was not answered.
    static constexpr unsigned long patienceMilliseconds = 1800;

    /// \param camera what the devices of one camera have in common, and another one at its place has not
    /// \param label names the device in messages: "/dev/video0"
    CallThread(const std::string& camera, std::string label);

    /// Waits for calls that are about to end, then hands the thread over, with all that its work owns; the library stays
    /// in the process then. Takes a quarter of a second at most.
    ~CallThread();
    CallThread(const CallThread&) = delete;
    CallThread& operator=(const CallThread&) = delete;

    /// Makes the call and returns what it returned, or throws what it threw.
    /// \param what is attempted, for messages: "start the stream"
    /// \throws Plugin::TimeoutPluginException when it has not come back in time, or cancel() was called;
    ///         Plugin::IOPluginException while the camera isn't answering
    template<typename Work>
    std::invoke_result_t<Work&> call(const std::string& what, Work work) {
        using Result = std::invoke_result_t<Work&>;
        if constexpr (std::is_void_v<Result>) {
            finish(what, std::move(work), nullptr);
        } else {
            auto result = std::make_shared<std::optional<Result>>();
            auto* const place = result.get();
            const auto done = finish(
                what, [place, todo = std::move(work)]() mutable { place->emplace(todo()); },
                std::move(result));
            return std::move(**place);
        }
    }

    /// Has it done when its turn comes, also when this object has gone: to let go of things.
    void leave(const std::string& what, std::function<void()> work);

    /// Whoever waits gives up. \return whether somebody did
    bool cancel();

private:
    struct Call;
    struct Camera;
    struct State;

    /// \return what keeps the result
    std::shared_ptr<void> finish(const std::string& what, std::function<void()> work,
                                 std::shared_ptr<void> result);

    const std::string label;
    const std::shared_ptr<State> state; ///< the thread's as well
    std::thread thread;
};

} // namespace Zentara::Linux
