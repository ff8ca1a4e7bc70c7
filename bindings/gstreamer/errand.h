#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace Zentara::GStreamer {

/// Work that may take long, on a thread of its own: who waits for it can give up, and leaves it behind. It must own all
/// that it touches; what nobody fetches ends with it. Separate.
template<typename Result>
class Errand {
public:
    explicit Errand(std::function<Result()> work) {
        std::packaged_task<Result()> task(std::move(work));
        result = task.get_future();
        std::thread(std::move(task)).detach();
    }

    /// Whether it is done within that time.
    [[nodiscard]] bool isDone(std::chrono::milliseconds limit) const {
        return result.wait_for(limit) == std::future_status::ready;
    }

    /// What came of it, once. \param goOn is asked fifty times a second
    /// \return nothing when that says no \throws what the work throws
    [[nodiscard]] std::optional<Result> fetch(const std::function<bool()>& goOn) {
        constexpr std::chrono::milliseconds pause(20);
        while (!isDone(pause)) {
            if (!goOn())
                return {};
        }
        return result.get();
    }

private:
    std::future<Result> result;
};

/// Destroys it on a thread of its own, for that may wait for a device. \return whose end is that of the destruction
template<typename Thing>
[[nodiscard]] Errand<bool> letGo(std::shared_ptr<Thing> thing) {
    return Errand<bool>([thing = std::move(thing)]() mutable {
        thing.reset();
        return true;
    });
}

} // namespace Zentara::GStreamer
