#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <zentara/host/export.h>
#include <zentara/host/lens.h>
#include <zentara/host/mode.h>
#include <zentara/sensor_value_array.h>

namespace Zentara::Host {

class FrameDraft;
struct FrameData;
struct StreamInfo;

/// How many bytes all frames of the process may take together, held ones, queued ones and those kept for the next
/// ones: 1 GiB (1,073,741,824) unless set. A stream that would need more fails in `next`, naming this number, until
/// somebody lets frames go; it never passes for a silent one. Safe.
[[nodiscard]] ZENTARA_HOST_API std::size_t frameMemoryLimit() noexcept;
ZENTARA_HOST_API void setFrameMemoryLimit(std::size_t bytes) noexcept;

/// How many bytes they take now. Memory that is kept for the next frames is given back when the last stream of the
/// process ends. Safe.
[[nodiscard]] ZENTARA_HOST_API std::size_t frameMemoryTaken() noexcept;

/// One picture of depth or colour, or one block of sound, as a camera or a recording delivered it.
///
/// A handle on memory that all copies share and nobody changes: copying one costs a count and never the bytes. The
/// memory is given back with the last copy, and lives as long as that: longer than the stream, the camera and the
/// plug-in that it came from. Safe; a single handle is separate, as a shared pointer is. One that was moved from can
/// only be assigned to and destroyed.
///
/// What comes back as a span lies in the frame's memory and ends with its last copy, which is why no temporary gives
/// one away.
class ZENTARA_HOST_API Frame {
public:
    /// A frame of the host's own, for example to correct or to show stored bytes. The bytes are copied.
    /// \param info what stream it is to pass for; not null, as any stream's \param number its place in that stream
    /// \throws Failure (Failed) when the process would hold more than `frameMemoryLimit()`
    Frame(std::shared_ptr<const StreamInfo> info, std::span<const std::byte> bytes, std::uint64_t number = 0,
          std::int64_t deviceMicros = 0);

    Frame(const Frame& other) noexcept;
    Frame(Frame&& other) noexcept;
    Frame& operator=(const Frame& other) noexcept;
    Frame& operator=(Frame&& other) noexcept;
    ~Frame();

    [[nodiscard]] Kind kind() const noexcept;

    /// Of the stream that it came from. Lives as long as a copy of the frame.
    [[nodiscard]] const StreamInfo& info() const& noexcept;
    const StreamInfo& info() const&& = delete;

    /// Its place in the stream, from 0: frames that were dropped on the host's side take numbers as well, those that
    /// the device lost do not.
    [[nodiscard]] std::uint64_t number() const noexcept;

    /// How many frames are missing between this one and the one that was delivered before: those that the device lost,
    /// as the gap between the frames' times tells, and those that the stream dropped because nobody fetched them. Of
    /// sound only the latter. 0 for the first frame, also for the first after the camera was away.
    [[nodiscard]] std::uint64_t droppedBefore() const noexcept;

    /// Whether it is the first one after the camera was away: its device's clock may have begun anew.
    [[nodiscard]] bool isFirstAfterReturn() const noexcept;

    /// When it was taken, in microseconds of the device's clock; of sound its first sample.
    [[nodiscard]] std::int64_t deviceMicros() const noexcept;

    /// When it had arrived, in microseconds of the host's monotonic clock (`Utils::Clock`); 0 for frames that no stream
    /// delivered.
    [[nodiscard]] std::int64_t hostMicros() const noexcept;

    /// Of a picture, in pixels; 0 of sound.
    [[nodiscard]] std::uint32_t width() const noexcept;
    [[nodiscard]] std::uint32_t height() const noexcept;

    /// All that was delivered. The first byte lies at a multiple of 64.
    [[nodiscard]] std::span<const std::byte> bytes() const& noexcept;
    std::span<const std::byte> bytes() const&& = delete;

    // Depth ----------------------------------------------------------------------------------------------------------
    //
    // A depth frame is planes of width x height unsigned 16-bit values in the machine's byte order, row by row from the
    // top left pixel: depth, then confidence, then raw phase. A camera may leave out the later ones, or add more.
    // All of these throw Failure (Usage) for frames of another kind and pixels outside the picture, and Failure
    // (Failed) when the frame is too short to hold its depth.

    /// Depth as delivered, in `info().millimetresPerUnit`, along `info().depthAlong`; 0: no depth.
    [[nodiscard]] std::span<const std::uint16_t> depth() const&;
    std::span<const std::uint16_t> depth() const&& = delete;

    /// How sure the camera is, in its own unit, 0: no depth; empty when it does not say.
    [[nodiscard]] std::span<const std::uint16_t> confidence() const&;
    std::span<const std::uint16_t> confidence() const&& = delete;

    /// A raw plane: 0 is the phase, 65,536 for one turn; further ones are the camera's affair. Empty for an index that
    /// the frame does not have. All 0 while the camera sends depth in place of phase.
    [[nodiscard]] std::span<const std::uint16_t> phase(std::size_t index = 0) const&;
    std::span<const std::uint16_t> phase(std::size_t index = 0) const&& = delete;

    /// Whether there is depth at that pixel.
    [[nodiscard]] bool valid(std::uint32_t x, std::uint32_t y) const;

    /// How far away it is along the optical axis, in metres; NaN without depth, and where a camera that measures along
    /// the ray has no ray for the pixel.
    /// \throws Failure (Failed) as `lens()` does when depth runs along the ray
    [[nodiscard]] float metres(std::uint32_t x, std::uint32_t y) const;

    /// The same in millimetres; 0 in place of NaN.
    [[nodiscard]] float millimetres(std::uint32_t x, std::uint32_t y) const;

    /// The same for all pixels, row by row. The second form writes into the caller's memory.
    /// \throws Failure (Usage) when there is not exactly one place a pixel
    [[nodiscard]] std::vector<float> metres() const;
    void metres(std::span<float> places) const;

    /// The same in millimetres; 0 in place of NaN.
    [[nodiscard]] std::vector<float> millimetres() const;
    void millimetres(std::span<float> places) const;

    /// The lens that the picture was taken with; frames of one stream share one, and its table of rays.
    /// \throws Failure (Failed) when no lens model of the picture's size is known, or it is none
    [[nodiscard]] const Lens& lens() const&;
    const Lens& lens() const&& = delete;

    /// The temperatures of the camera's sensors when the frame was taken, a few seconds old at most; none where the
    /// camera has no sensors, or no correction needs them.
    [[nodiscard]] std::span<const SensorValue> temperatures() const& noexcept;
    std::span<const SensorValue> temperatures() const&& = delete;

    /// The frame with its depth corrected by what `info().corrections` holds for its camera mode; everything else is
    /// copied. In millimetres and along the axis or the ray as before:
    ///
    ///     phase delay   minus delay x millimetres of a step of phase
    ///     cyclic error  plus p0 + p1 cos a + p2 sin a + p3 cos 2a + p4 sin 2a ..., a: the phase as an angle (1)
    ///     temperature   plus the sum over the sensors of parameter x (now - at calibration) (linear), or plus
    ///                   c0 + c1 t + c2 t2 ..., t: now - at calibration of the first sensor (polynomial)
    ///
    /// (1) as measured, before the phase delay is taken out. Pixels without depth have none afterwards, nor have those
    /// whose value would leave 1 to 65,535. What cannot be corrected is left out, and `uncorrected()` names it. A frame
    /// that is corrected already comes back as it is.
    /// \throws Failure (Failed) when the process would hold more than `frameMemoryLimit()`
    [[nodiscard]] Frame corrected() const;

    /// What its depth has been corrected for: "temperature", "cyclic error", "phase delay".
    [[nodiscard]] std::vector<std::string> corrections() const;

    /// What its depth is not corrected for, and why: "temperature: not applied", "cyclic error: algorithm 3 is not
    /// known". Empty when nothing is left to correct.
    [[nodiscard]] std::vector<std::string> uncorrected() const;

    // Colour ---------------------------------------------------------------------------------------------------------

    /// Red, green and blue of each pixel, eight bits each, row by row from the top: BT.601 from packed YUY2, the form
    /// in which cameras send uncompressed colour. The second form writes into the caller's memory.
    /// \throws Failure (Usage) for frames of another kind, and when there are not exactly three places a pixel; (Failed)
    ///         for compressed frames (MJPEG, H.264), which are not decoded, and when the frame is too short
    [[nodiscard]] std::vector<std::uint8_t> rgb() const;
    void rgb(std::span<std::uint8_t> places) const;

    // Sound ----------------------------------------------------------------------------------------------------------

    /// Samples of `info().mode.channels` channels in turn, in the machine's byte order; half a sample at the end is
    /// left out.
    /// \throws Failure (Usage) for frames of another kind; (Failed) for samples of other than 16 bits, which `bytes()`
    ///         gives
    [[nodiscard]] std::span<const std::int16_t> samples() const&;
    std::span<const std::int16_t> samples() const&& = delete;

private:
    friend class FrameDraft;
    explicit Frame(FrameData* filled) noexcept : data(filled) {}

    FrameData* data; ///< one use of it is this handle's; null once moved from
};

} // namespace Zentara::Host
