#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace Zentara::Viewer {

/// Work that may take its time, done one after the other on a thread of its own. Safe.
class Errands final {
public:
    using Errand = std::function<void()>;

    Errands();
    /// Waits for the errand that is under way, and drops the others.
    ~Errands();
    Errands(const Errands&) = delete;
    Errands& operator=(const Errands&) = delete;

    /// \param errand throws nothing
    void post(Errand errand);
    /// Whether all has been done within that time; nothing more should be posted.
    [[nodiscard]] bool isDoneWithin(std::chrono::milliseconds limit);

private:
    void run();

    std::mutex lock;
    std::condition_variable changed;
    std::deque<Errand> errands; ///< the first one is under way
    bool isEnding = false;
    std::thread thread;
};

} // namespace Zentara::Viewer
