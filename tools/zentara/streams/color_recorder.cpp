#include "tools/zentara/streams/color_recorder.h"

#include <algorithm>

#include <zentara/host/picture.h>
#include <zentara/utils/format.h>

#include "tools/zentara/exit_code.h"

namespace Zentara::Tool {
namespace {

std::uint8_t clamped(int value) { return static_cast<std::uint8_t>(std::clamp(value, 0, 255)); }

/// In 1/256: the conversion of BT.601 with whole numbers.
void appendRgb(std::vector<std::uint8_t>& rgb, int y, int u, int v) {
    const int luma = 298 * (y - 16) + 128;
    rgb.push_back(clamped((luma + 409 * (v - 128)) / 256));
    rgb.push_back(clamped((luma - 100 * (u - 128) - 208 * (v - 128)) / 256));
    rgb.push_back(clamped((luma + 516 * (u - 128)) / 256));
}

} // namespace

std::vector<std::uint8_t> rgbOfYuy2(const std::uint8_t* data, std::size_t pixels) {
    std::vector<std::uint8_t> rgb;
    rgb.reserve(3 * pixels);
    for (std::size_t pair = 0; pair < pixels / 2; ++pair) {
        const std::uint8_t* packed = data + 4 * pair;
        appendRgb(rgb, packed[0], packed[1], packed[3]);
        appendRgb(rgb, packed[2], packed[1], packed[3]);
    }
    return rgb;
}

ColorRecorder::ColorRecorder(const StreamDescription& stream, std::uint64_t count, const std::string& pngPath)
    : size(stream.frameSize()), counter(count, stream.rate()) {
    if (pngPath.empty())
        return;
    if (size.width == 0 || stream.mode.color()->getCompression() != CompressionType_NONE)
        throw Failure(Failure::Failed,
                      Utils::Format("no picture can be made of frames in mode %") % stream.modeName());
    picture = std::make_unique<OutputFile>(pngPath);
}

bool ColorRecorder::take(const std::uint8_t* data, std::size_t bytes, std::int64_t micros) {
    const std::size_t wanted = std::size_t{size.width} * size.height * 2;
    if (picture && bytes < wanted)
        throw Failure(Failure::Failed, Utils::Format("colour frame % has % bytes; its pixels take %") %
                                           counter.frames() % bytes % wanted);
    if (picture)
        last.assign(data, data + wanted);
    counter.count(micros);
    return !counter.full();
}

void ColorRecorder::commit() {
    if (!picture || last.empty())
        return;
    picture->write(Picture::fromRgb(size.width, size.height, rgbOfYuy2(last.data(), last.size() / 2)).png());
    picture->commit();
}

void ColorRecorder::discard() {
    picture.reset();
    last.clear();
}

void ColorRecorder::print(std::ostream& out) const {
    counter.print(out);
    if (!last.empty())
        out << "picture  " << picture->path() << '\n';
}

void ColorRecorder::fill(Json& stream) const {
    counter.fill(stream);
    if (!last.empty())
        stream["files"]["png"] = picture->path();
}

} // namespace Zentara::Tool
