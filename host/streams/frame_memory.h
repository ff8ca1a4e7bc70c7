#pragma once

#include <cstddef>
#include <string>

#include <zentara/host/failure.h>
#include <zentara/utils/mutex.h>

#include "host/streams/frame_data.h"

namespace Zentara::Host {

/// The memory of all frames of the process. Frames may be let go after everything else has ended, so there is one, and
/// it never ends. Blocks that come back are kept for the next frames while a stream is open. Safe.
class FrameMemory final {
public:
    static constexpr std::size_t usualLimit = std::size_t{1} << 30;

    static FrameMemory& instance() noexcept;

    FrameMemory(const FrameMemory&) = delete;
    FrameMemory& operator=(const FrameMemory&) = delete;

    /// A block for at least so many bytes, of one use. Takes one that came back if there is one of about that size, so
    /// that a stream soon needs no new memory.
    /// \return null when that would take more than the limit, or the system has no more
    [[nodiscard]] FrameData* take(std::size_t bytes) noexcept;

    /// Gives up one use; the last one gives the block back.
    void release(FrameData* block) noexcept;

    /// Whether take() would find that much now, as far as the limit goes.
    [[nodiscard]] bool hasRoom(std::size_t bytes) const noexcept;

    /// The failure that take() stands for. \param what was attempted: "take a frame of LEFT SIM0570"
    [[nodiscard]] Failure shortage(const std::string& what, std::size_t bytes) const;

    // Told by streams: after the last one nothing is kept.
    void streamOpens() noexcept;
    void streamEnds() noexcept;

    void setLimit(std::size_t bytes) noexcept;
    [[nodiscard]] std::size_t limit() const noexcept;
    [[nodiscard]] std::size_t taken() const noexcept;

private:
    FrameMemory() = default;
    ~FrameMemory() = delete;

    void freeKept() noexcept ZENTARA_REQUIRES(lock);
    void freeBlock(FrameData* block) noexcept ZENTARA_REQUIRES(lock);

    mutable Utils::Threading::Mutex lock;
    std::size_t most ZENTARA_GUARDED_BY(lock) = usualLimit; ///< bytes; below `total` once it was lowered
    std::size_t total ZENTARA_GUARDED_BY(lock) = 0;         ///< bytes of all blocks, the kept ones among them
    std::size_t streams ZENTARA_GUARDED_BY(lock) = 0;       ///< that are open; while it is 0 nothing is kept
    FrameData*
        kept ZENTARA_GUARDED_BY(lock) = nullptr; ///< a list through `next`, the last to come back first
};

} // namespace Zentara::Host
