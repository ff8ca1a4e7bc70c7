#include "tools/zentara/streams/depth_recorder.h"

#include <algorithm>
#include <cstring>
#include <sstream>

#include <zentara/host/cloud_view.h>
#include <zentara/host/color_map.h>
#include <zentara/host/lens.h>
#include <zentara/utils/format.h>

#include "host/cameras/camera_bus.h"
#include "tools/zentara/exit_code.h"
#include "utils/visible_text.h"

namespace Zentara::Tool {

DepthRecorder::DepthRecorder(const StreamDescription& stream, const StreamInfo& about, std::uint64_t count,
                             const DepthFiles& files)
    : camera(cameraLabel(stream.node)), size(stream.frameSize()), info(std::make_shared<StreamInfo>(about)),
      counter(count, stream.rate()), depth() {
    if (size.width == 0)
        throw Failure(Failure::Failed,
                      Utils::Format("the size of a frame in mode % is not known") % stream.modeName());
    const auto make = [](std::unique_ptr<OutputFile>& place, const std::string& path) {
        if (!path.empty())
            place = std::make_unique<OutputFile>(path);
    };
    make(picture, files.png);
    make(file, files.raw);
    make(cloud, files.ply);
    make(cloudPicture, files.cloudPng);
    if ((cloud || cloudPicture) && !info->lens)
        throw Failure(Failure::Failed, "cannot make a point cloud of " + camera, "no lens model is known");
}

bool DepthRecorder::take(const std::uint8_t* data, std::size_t bytes, std::int64_t micros) {
    const std::size_t pixels = std::size_t{size.width} * size.height;
    if (bytes < pixels * sizeof(std::uint16_t))
        throw Failure(Failure::Failed, Utils::Format("frame % has % bytes; its depth alone takes %") %
                                           counter.frames() % bytes % (pixels * sizeof(std::uint16_t)));
    depth.resize(pixels);
    std::memcpy(depth.data(), data, pixels * sizeof(std::uint16_t));
    if (cloud || cloudPicture)
        last.emplace(info, std::span(reinterpret_cast<const std::byte*>(data), bytes), counter.frames(),
                     micros);
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
    if (last)
        writeCloud();
    if (!file)
        return;
    file->cut(rawBytes); // no half frame
    file->commit();
}

void DepthRecorder::discard() {
    file.reset();
    picture.reset();
    cloud.reset();
    cloudPicture.reset();
    last.reset();
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

void DepthRecorder::writeCloud() {
    const PointCloud points = last->lens().pointsOf(*last);
    if (cloud) {
        std::ostringstream bytes;
        points.writePly(bytes);
        cloud->write(bytes.str());
        cloud->commit();
    }
    if (!cloudPicture)
        return;
    const std::string title =
        Utils::Format("% points of %, frame %") % points.points().size() % camera % counter.frames();
    cloudPicture->write(CloudView{}.draw(points, title).png());
    cloudPicture->commit();
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
    if (cloud && last)
        out << "cloud    " << Utils::visibleText(cloud->path()) << '\n';
    if (cloudPicture && last)
        out << "drawing  " << Utils::visibleText(cloudPicture->path()) << '\n';
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
    if (cloud && last)
        stream["files"]["ply"] = cloud->path();
    if (cloudPicture && last)
        stream["files"]["cloudPng"] = cloudPicture->path();
    if (file)
        stream["files"]["raw"] = file->path();
}

} // namespace Zentara::Tool
