#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <zentara/host/lens.h>
#include <zentara/host/stream_info.h>

#include "host/once.h"

namespace Zentara::Host {

/// What all frames of a stream share. Safe.
class StreamContext final {
public:
    explicit StreamContext(StreamInfo about) : info(std::move(about)) {}

    const StreamInfo info;

    /// \throws Failure, the same each time
    [[nodiscard]] const Lens& lens() const;

    /// What depth along each pixel's ray is multiplied with to run along the axis, of the lens's size; NaN where there
    /// is no ray. \throws Failure as lens() does
    [[nodiscard]] const std::vector<float>& axisShares() const;

    /// What the harmonic correction of the cyclic error adds at each of the 65,536 steps of phase, in millimetres.
    [[nodiscard]] const std::vector<float>& harmonics() const;

private:
    // What stands below a flag never changes once it is set.
    mutable Once lensMade;
    mutable std::optional<Lens> ownLens;
    mutable Once sharesMade;
    mutable std::vector<float> shares;
    mutable Once harmonicsMade;
    mutable std::vector<float> waves;
};

/// Corrections of depth, one bit each.
enum Correction : std::uint8_t {
    Correction_PHASE_DELAY = 1,
    Correction_CYCLIC_ERROR = 2,
    Correction_TEMPERATURE = 4,
    Correction_TRIED = 8, ///< all that can be done has been
};

/// The corrections of the camera mode that the stream is in; null for a mode that there are none for.
[[nodiscard]] const ModeCorrections* correctionsOf(const StreamInfo& info) noexcept;

/// The memory of a frame: this record, then its bytes. Written by the one who holds it as a draft; once it is a frame
/// nothing changes but the count of its uses.
struct alignas(64) FrameData {
    static constexpr std::size_t mostTemperatures = 8;

    [[nodiscard]] std::byte* bytes() noexcept { return reinterpret_cast<std::byte*>(this + 1); }
    [[nodiscard]] const std::byte* bytes() const noexcept {
        return reinterpret_cast<const std::byte*>(this + 1);
    }

    std::atomic<std::uint32_t> uses{1};
    std::size_t capacity = 0;  ///< of bytes(); set once, by the memory
    FrameData* next = nullptr; ///< the memory's, while nobody has it

    std::size_t length = 0;
    std::shared_ptr<const StreamContext> context;
    std::uint64_t number = 0;
    std::uint64_t droppedBefore = 0;
    std::int64_t deviceMicros = 0;
    std::int64_t hostMicros = 0;
    std::int64_t takenMicros =
        0; ///< on the host's clock, where a recording says it; 0 where that is not known
    bool isFirstAfterReturn = false;
    std::uint8_t corrections = 0; ///< those that were applied, as a set of `Correction`
    std::array<SensorValue, mostTemperatures> temperatures{};
    std::size_t temperatureCount = 0;
};

} // namespace Zentara::Host
