#include "tools/zentara/streams/color_recorder.h"

#include <algorithm>

#include <zentara/host/picture.h>
#include <zentara/utils/format.h>

#include "host/streams/yuy2.h"
#include "tools/zentara/exit_code.h"
#include "utils/visible_text.h"

namespace Zentara::Tool {
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
    std::vector<std::uint8_t> rgb(last.size() / 2 * 3);
    rgbOfYuy2(last.data(), last.size() / 2, rgb.data());
    picture->write(Picture::fromRgb(size.width, size.height, std::move(rgb)).png());
    picture->commit();
}

void ColorRecorder::discard() {
    picture.reset();
    last.clear();
}

void ColorRecorder::print(std::ostream& out) const {
    counter.print(out);
    if (!last.empty())
        out << "picture  " << Utils::visibleText(picture->path()) << '\n';
}

void ColorRecorder::fill(Json& stream) const {
    counter.fill(stream);
    if (!last.empty())
        stream["files"]["png"] = picture->path();
}

} // namespace Zentara::Tool
