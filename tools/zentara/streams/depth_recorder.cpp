#include "tools/zentara/streams/depth_recorder.h"

#include <algorithm>
#include <cstring>

#include <zentara/host/color_map.h>
#include <zentara/utils/format.h>

#include "host/cameras/camera_bus.h"
#include "tools/zentara/exit_code.h"
#include "utils/visible_text.h"

namespace Zentara::Tool {

DepthRecorder::DepthRecorder(const StreamDescription& stream, std::uint64_t count, const std::string& pngPath,
                             const std::string& rawPath)
    : camera(cameraLabel(stream.node)), size(stream.frameSize()), counter(count, stream.rate()), depth() {
    if (size.width == 0)
        throw Failure(Failure::Failed,
                      Utils::Format("the size of a frame in mode % is not known") % stream.modeName());
    if (!pngPath.empty())
        picture = std::make_unique<OutputFile>(pngPath);
    if (rawPath.empty())
        return;
    file = std::make_unique<OutputFile>(rawPath);
}

bool DepthRecorder::take(const std::uint8_t* data, std::size_t bytes, std::int64_t micros) {
    const std::size_t pixels = std::size_t{size.width} * size.height;
    if (bytes < pixels * sizeof(std::uint16_t))
        throw Failure(Failure::Failed, Utils::Format("frame % has % bytes; its depth alone takes %") %
                                           counter.frames() % bytes % (pixels * sizeof(std::uint16_t)));
    depth.resize(pixels);
    std::memcpy(depth.data(), data, pixels * sizeof(std::uint16_t));
    counter.count(micros);
    measure();
    if (file) {
        file->append(data, bytes);
        rawBytes += bytes;
    }
    return !counter.full();
}

void DepthRecorder::commit() {
    if (picture && !depth.empty())
        writePicture();
    if (!file)
        return;
    file->cut(rawBytes); // no half frame
    file->commit();
}

void DepthRecorder::discard() {
    file.reset();
    picture.reset();
    depth.clear();
}

void DepthRecorder::writePicture() {
    const ColorMap colors = ColorMap::ofDepths(depth);
    picture->write(colors
                       .explain(colors.paint(depth, size.width, size.height),
                                "Depth, " + camera + ", frame " + std::to_string(counter.frames()))
                       .png());
    picture->commit();
}

DepthRecorder::Range DepthRecorder::range() const noexcept { return seen.farthest == 0 ? Range{} : seen; }

double DepthRecorder::blind() const noexcept {
    const std::uint64_t pixels = counter.frames() * size.width * size.height;
    return pixels == 0 ? 0.0 : static_cast<double>(zeros) / static_cast<double>(pixels);
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

void DepthRecorder::print(std::ostream& out) const {
    counter.print(out);
    if (!depth.empty())
        out << "depth    " << range().nearest << " to " << range().farthest << " mm, "
            << fixed(100.0 * blind(), 1) << " % of the pixels without\n";
    if (picture && !depth.empty())
        out << "picture  " << Utils::visibleText(picture->path()) << '\n';
    if (file)
        out << "raw      " << Utils::visibleText(file->path()) << '\n';
}

void DepthRecorder::fill(Json& stream) const {
    counter.fill(stream);
    stream["depth"] = {{"nearestMillimetres", range().nearest},
                       {"farthestMillimetres", range().farthest},
                       {"withoutDepth", blind()}};
    if (picture && !depth.empty())
        stream["files"]["png"] = picture->path();
    if (file)
        stream["files"]["raw"] = file->path();
}

} // namespace Zentara::Tool
