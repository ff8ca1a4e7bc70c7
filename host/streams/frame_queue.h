#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <zentara/host/frame.h>

namespace Zentara::Host {

/// The frames that wait to be fetched, the oldest first. It keeps account of those that were dropped: the next one that
/// is taken out tells them. It holds the only handle of each frame. Separate.
class FrameQueue final {
public:
    /// \param places 1 or more
    explicit FrameQueue(std::size_t places) : frames(places) {}

    [[nodiscard]] bool empty() const noexcept { return count == 0; }
    [[nodiscard]] bool full() const noexcept { return count == frames.size(); }

    /// Puts a frame at the end, after dropping the oldest where there is no place.
    /// \return how many were dropped
    std::size_t push(Frame frame) noexcept;

    /// The oldest one, or the newest one after dropping the others. Not when it is empty.
    [[nodiscard]] Frame pop(bool newest, std::uint64_t& dropped) noexcept;

    /// Drops the oldest. Not when it is empty.
    void dropOldest() noexcept;

    void clear() noexcept;

private:
    [[nodiscard]] Frame removeFirst() noexcept;

    std::vector<std::optional<Frame>> frames; ///< a ring: `count` of them from `first` on
    std::size_t first = 0;
    std::size_t count = 0;
    std::uint64_t lostBefore = 0; ///< frames that are missing before the first one because of drops
};

} // namespace Zentara::Host
