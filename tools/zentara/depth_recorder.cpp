#include "tools/zentara/depth_recorder.h"

#include <algorithm>
#include <cstring>

#include <zentara/utils/exceptions.h>
#include <zentara/utils/format.h>

#include "tools/zentara/exit_code.h"
#include "tools/zentara/paths.h"

namespace Zentara::Tool {
namespace {

constexpr std::int64_t microsPerSecond = 1'000'000;

[[noreturn]] void failWriting(const char* what, const std::string& path) {
    throw ToolFailure(ExitCode_FAILED, Utils::formatLastError(Utils::Format("cannot % '%'") % what % path));
}

} // namespace

DepthRecorder::DepthRecorder(std::uint64_t count, const std::string& rawPath) : wanted(count) {
    if (rawPath.empty())
        return;
    file = std::make_unique<PendingFile>(rawPath);
    raw.open(pathOf(file->partPath()), std::ios::binary | std::ios::trunc);
    if (!raw)
        failWriting("create", file->partPath());
}

bool DepthRecorder::take(const std::uint8_t* data, std::size_t size, std::int64_t micros) {
    if (size < pixelCount * sizeof(std::uint16_t))
        throw ToolFailure(ExitCode_FAILED, Utils::Format("frame % has % bytes; its depth alone takes %") %
                                               taken % size % (pixelCount * sizeof(std::uint16_t)));
    depth.resize(pixelCount);
    std::memcpy(depth.data(), data, pixelCount * sizeof(std::uint16_t));
    countLost(micros);
    measure();
    if (file)
        record(data, size);
    return ++taken < wanted;
}

void DepthRecorder::commit() {
    if (!file)
        return;
    raw.close();
    if (!raw)
        failWriting("write", file->partPath());
    file->commit();
}

void DepthRecorder::discard() {
    raw.close();
    file.reset();
}

double DepthRecorder::seconds() const noexcept {
    return static_cast<double>(lastMicros - firstMicros) / microsPerSecond;
}

double DepthRecorder::rate() const noexcept {
    return lastMicros > firstMicros ? static_cast<double>(taken - 1) / seconds() : 0.0;
}

DepthRange DepthRecorder::range() const noexcept { return seen.farthest == 0 ? DepthRange{} : seen; }

double DepthRecorder::blind() const noexcept {
    return taken == 0 ? 0.0 : static_cast<double>(zeros) / static_cast<double>(taken * pixelCount);
}

/// Frames come a period apart; a longer gap tells how many are missing in it.
void DepthRecorder::countLost(std::int64_t micros) noexcept {
    if (taken == 0) {
        firstMicros = micros;
    } else {
        const std::int64_t periods =
            ((micros - lastMicros) * framesPerSecond + microsPerSecond / 2) / microsPerSecond;
        lost += static_cast<std::uint64_t>(std::max<std::int64_t>(periods - 1, 0));
    }
    lastMicros = micros;
}

void DepthRecorder::measure() noexcept {
    for (const std::uint16_t value : depth) {
        if (value == 0) {
            ++zeros;
            continue;
        }
        seen.nearest = std::min(seen.nearest, value);
        seen.farthest = std::max(seen.farthest, value);
    }
}

void DepthRecorder::record(const std::uint8_t* data, std::size_t size) {
    raw.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    if (!raw)
        failWriting("write", file->partPath());
}

} // namespace Zentara::Tool
