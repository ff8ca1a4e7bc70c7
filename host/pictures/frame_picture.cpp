#include <zentara/host/picture.h>

#include <zentara/host/color_map.h>
#include <zentara/host/frame.h>
#include <zentara/host/stream_info.h>
#include <zentara/utils/format.h>

namespace Zentara::Host {

using Utils::Format;

Picture pictureOf(const Frame& frame) {
    if (frame.kind() != Kind::Depth) // of sound rgb() says that there is none
        return Picture::fromRgb(frame.width(), frame.height(), frame.rgb());
    const StreamInfo& info = frame.info();
    const float unit = info.millimetresPerUnit;
    const ColorMap colors =
        ColorMap::ofDepths(frame.depth(), unit == 1 ? std::string("mm") : Format("x % mm") % unit);
    const char* const mark = !frame.uncorrected().empty()   ? ", not corrected"
                             : !frame.corrections().empty() ? ", corrected"
                                                            : "";
    const std::string title = Format("Depth, %, frame %") % info.camera.label(Kind::Depth) % frame.number();
    return colors.explain(colors.paint(frame.depth(), frame.width(), frame.height()), title + mark);
}

} // namespace Zentara::Host
