#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <functional>
#include <mutex>

#include "host/cameras/hand.h"
#include "host/streams/stream_source.h"

namespace Zentara::Host {

/// What a fake source does at one read: on the reading thread, with the buffer.
using FakeStep = std::function<ReadBufferStatus(void* buffer, int size, std::int64_t* micros, int* length)>;

/// A camera that delivers what the test tells it to. Lives as long as somebody uses it. Safe.
class FakeCamera : public std::enable_shared_from_this<FakeCamera> {
public:
    FakeCamera() {
        info.camera.name = "LEFT";
        info.mode = {.kind = Kind::Depth, .name = "SMALL", .width = 2, .height = 1, .rate = 100};
    }

    /// The next read does that.
    void then(FakeStep step) {
        const std::lock_guard hold(lock);
        steps.push_back(std::move(step));
        changed.notify_all();
    }

    /// The next read delivers a frame of that many values: the number, and 7.
    void frame(std::uint16_t number, std::int64_t micros, std::size_t count = 2) {
        then([=](void* buffer, int, std::int64_t* when, int* length) {
            std::vector<std::uint16_t> values(count, 7);
            values[0] = number;
            std::memcpy(buffer, values.data(), 2 * count);
            *when = micros;
            *length = static_cast<int>(2 * count);
            return ReadBufferStatus_OK;
        });
    }
    void status(ReadBufferStatus status) {
        then([=](void*, int, std::int64_t*, int*) { return status; });
    }

    /// Waits until that many reads have begun. \return whether it came to that
    bool waitForReads(int count) {
        std::unique_lock hold(lock);
        return changed.wait_for(hold, std::chrono::seconds(20), [&] { return reads >= count; });
    }

    /// Hanging calls come back from now on.
    void release() {
        const std::lock_guard hold(lock);
        released = true;
        changed.notify_all();
    }
    void hang() {
        std::unique_lock hold(lock);
        changed.wait(hold, [&] { return released; });
    }

    /// \param queue and so on, for the stream
    Stream stream(const StreamOptions& options = {}) {
        return openStream({[self = shared_from_this()] { return self->open(); }, "open LEFT", nullptr,
                           [this](const std::string& text) { notes.push_back(text); }},
                          options);
    }

    StreamInfo info;
    std::function<void()> onOpen = [] {};
    std::function<void()> onStart = [] {};
    std::function<void()> onStop = [] {};
    std::function<void()> onClose = [] {};
    std::vector<std::string> notes;
    std::atomic<int> tried{0};
    std::atomic<int> opened{0};
    std::atomic<int> gone{0}; ///< sources that were destroyed

private:
    class Source;

    std::shared_ptr<StreamSource> open();

    ReadBufferStatus read(void* buffer, int size, std::int64_t* micros, int* length, const bool& ended) {
        FakeStep step;
        {
            std::unique_lock hold(lock);
            ++reads;
            changed.notify_all();
            if (!changed.wait_for(hold, std::chrono::milliseconds(20),
                                  [&] { return ended || !steps.empty(); }))
                return ReadBufferStatus_TIMEOUT;
            if (ended)
                return ReadBufferStatus_NOT_STREAMING;
            step = std::move(steps.front());
            steps.pop_front();
        }
        return step(buffer, size, micros, length);
    }

    std::mutex lock;
    std::condition_variable changed;
    std::deque<FakeStep> steps;
    int reads = 0;
    bool released = false;
};

class FakeCamera::Source final : public StreamSource {
public:
    explicit Source(std::shared_ptr<FakeCamera> of) : camera(std::move(of)), about(camera->info) {}
    ~Source() override { ++camera->gone; }

    [[nodiscard]] const StreamInfo& info() const override { return about; }
    [[nodiscard]] std::string label() const override { return "LEFT"; }
    [[nodiscard]] std::size_t usualBytes() const override { return 64; }
    void start() override { camera->onStart(); }
    ReadBufferStatus read(void* buffer, int size, std::int64_t* micros, int* length) override {
        return camera->read(buffer, size, micros, length, ended);
    }
    void stop() override {
        camera->onStop();
        const std::lock_guard hold(camera->lock);
        ended = true;
        camera->changed.notify_all();
    }
    void close() override { camera->onClose(); }

private:
    const std::shared_ptr<FakeCamera> camera;
    const StreamInfo about;
    bool ended = false; ///< guarded by the camera's lock
};

inline std::shared_ptr<StreamSource> FakeCamera::open() {
    ++tried;
    onOpen();
    ++opened;
    return std::make_shared<Source>(shared_from_this());
}

} // namespace Zentara::Host
