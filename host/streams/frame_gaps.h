#pragma once

#include <cstdint>

namespace Zentara::Host {

/// Tells from the times of a stream's frames how many are missing between them. Separate.
class FrameGaps final {
public:
    /// \param framesPerSecond nominal
    explicit FrameGaps(std::uint32_t framesPerSecond) noexcept;

    /// \param micros when the frame was taken \return how many are missing before it
    [[nodiscard]] std::uint64_t count(std::int64_t micros) noexcept;

    /// The next frame begins anew: its time has nothing to do with the last one's.
    void resume() noexcept { isFirst = true; }

private:
    std::int64_t nominal;
    std::int64_t last = 0;
    bool isFirst = true;
};

} // namespace Zentara::Host
