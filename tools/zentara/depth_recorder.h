#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "tools/zentara/color_map.h"
#include "tools/zentara/pending_file.h"

namespace Zentara::Tool {

/// Takes the frames of a depth stream: counts them, notes what was lost, keeps the last one, and writes them to a
/// file if asked. A frame is a plane of QVGA depth in millimetres, then whatever the device adds.
class DepthRecorder final {
public:
    static constexpr int width = 320;
    static constexpr int height = 240;
    static constexpr int framesPerSecond = 60;
    static constexpr std::size_t pixelCount = std::size_t{width} * height;

    /// \param count frames to take. \param rawPath a file for the frames as they came; empty for none.
    /// \throws ToolFailure when the file cannot be opened.
    DepthRecorder(std::uint64_t count, const std::string& rawPath);

    /// \return false once enough frames have come. \throws ToolFailure when the frame is too short to hold depth or
    /// the file cannot be written.
    bool take(const std::uint8_t* data, std::size_t size, std::int64_t micros);

    /// Completes the file.
    void commit();
    /// Closes and removes what has been written.
    void discard();

    [[nodiscard]] std::uint64_t frames() const noexcept { return taken; }
    [[nodiscard]] std::uint64_t dropped() const noexcept { return lost; }
    /// From the first frame's time to the last one's.
    [[nodiscard]] double seconds() const noexcept;
    /// Frames a second over that time; 0 below two frames.
    [[nodiscard]] double rate() const noexcept;
    /// Over all frames.
    [[nodiscard]] DepthRange range() const noexcept;
    /// Share of the pixels of all frames that had no depth.
    [[nodiscard]] double blind() const noexcept;
    /// The last frame's depth; empty without one.
    [[nodiscard]] const std::vector<std::uint16_t>& last() const noexcept { return depth; }

private:
    void countLost(std::int64_t micros) noexcept;
    void measure() noexcept;
    void record(const std::uint8_t* data, std::size_t size);

    const std::uint64_t wanted;
    std::unique_ptr<PendingFile> file;
    std::ofstream raw;
    std::vector<std::uint16_t> depth;
    std::uint64_t taken = 0;
    std::uint64_t lost = 0;
    std::uint64_t zeros = 0;
    std::int64_t firstMicros = 0;
    std::int64_t lastMicros = 0;
    DepthRange seen{0xFFFF, 0};
};

} // namespace Zentara::Tool
