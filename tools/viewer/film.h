#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <zentara/host/failure.h>
#include <zentara/host/recording.h>

namespace Zentara::Viewer {

/// A recording that is being made. Safe: each camera writes on its own thread.
class Film final {
public:
    /// \throws Failure as Host::Recorder does
    Film(const std::string& path, const std::vector<Host::StreamInfo>& streams);

    /// Adds a frame, as long as that goes; the first failure ends the recording behind the last whole frame.
    void add(std::size_t stream, const Host::Frame& frame) noexcept;
    /// Gives the file its name. Twice is harmless.
    void finish() noexcept;

    [[nodiscard]] const std::string& path() const noexcept { return recorder.path(); }
    [[nodiscard]] std::uint64_t frames() const { return recorder.frames(); }
    [[nodiscard]] bool isOver() const noexcept { return over; }
    /// Why it ended before somebody asked for that.
    [[nodiscard]] std::optional<Host::Failure> trouble() const;

private:
    void fail(const Host::Failure& failure);

    Host::Recorder recorder;
    std::atomic<bool> over = false;
    mutable std::mutex lock;
    std::optional<Host::Failure> first; ///< guarded by the lock
};

} // namespace Zentara::Viewer
