#include "tools/zentara/streams/cloud_maker.h"

#include <algorithm>
#include <sstream>

#include <zentara/host/cloud_view.h>
#include <zentara/host/lens.h>
#include <zentara/host/stream_info.h>
#include <zentara/utils/format.h>

namespace Zentara::Tool {

using namespace Host;

/// Of the last depth frame, and where colours are wanted the colour frame that belongs to it: made when a file is
/// written, not for each frame.
PointCloud CloudMaker::make() {
    const FrameSet set = frames.set();
    PointCloud cloud = wantsColor ? cloudOf(set) : set.depth->lens().pointsOf(*set.depth);
    const auto colors = cloud.colors();
    points = cloud.points().size();
    painted = static_cast<std::size_t>(
        std::count_if(colors.begin(), colors.end(), [](const auto& color) { return color.has_value(); }));
    plain = cloud.uncolored();
    return cloud;
}

std::string CloudMaker::ply() {
    std::ostringstream bytes;
    make().writePly(bytes);
    return bytes.str();
}

std::string CloudMaker::png() {
    const Frame depth = *frames.set().depth;
    const PointCloud cloud = make();
    CloudView view;
    view.ownColors = !cloud.colors().empty();
    return view
        .draw(cloud, Utils::Format("% points of %, frame %") % points %
                         depth.info().camera.label(Kind::Depth) % depth.number())
        .png();
}

void CloudMaker::print(std::ostream& out) const {
    if (points == 0)
        return;
    out << "         " << points << " points";
    if (!plain.empty())
        out << " without colour: " << printable(plain);
    else if (wantsColor)
        out << ", " << painted << " in colour";
    out << '\n';
}

void CloudMaker::fill(Json& stream) const {
    if (points == 0)
        return;
    stream["cloud"] = {{"points", points}, {"colored", painted}};
    if (!plain.empty())
        stream["cloud"]["uncolored"] = plain;
}

} // namespace Zentara::Tool
