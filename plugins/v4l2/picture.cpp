#include "plugins/v4l2/picture.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <linux/videodev2.h>
#include <memory>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

#include "plugins/linux/fourcc_text.h"
#include "plugins/v4l2/jpeg_decoder.h"

namespace Zentara::V4l2 {

using Utils::Format;

namespace {

using Bytes = std::span<const std::byte>;

constexpr std::uint32_t mostPixels = 16384; // in a row or column
constexpr std::uint32_t mostBytes = 1U << 28;
constexpr std::byte grey{128};

/// What drivers know under several names.
enum class Kind { None, Values, Yuyv, Uyvy, SemiPlanar, Planar, Grey, Jpeg, Other };

struct Row {
    std::uint32_t fourCC;
    Kind kind;
    bool vFirst; ///< of planes: the second one is V
};

constexpr std::array<Row, 12> rows{{
    {V4L2_PIX_FMT_Z16, Kind::Values, false},
    {V4L2_PIX_FMT_Y16, Kind::Values, false},
    {V4L2_PIX_FMT_YUYV, Kind::Yuyv, false},
    {V4L2_PIX_FMT_UYVY, Kind::Uyvy, false},
    {V4L2_PIX_FMT_NV12, Kind::SemiPlanar, false},
    {V4L2_PIX_FMT_NV21, Kind::SemiPlanar, true},
    {V4L2_PIX_FMT_YUV420, Kind::Planar, false},
    {V4L2_PIX_FMT_YVU420, Kind::Planar, true},
    {V4L2_PIX_FMT_GREY, Kind::Grey, false},
    {V4L2_PIX_FMT_MJPEG, Kind::Jpeg, false},
    {V4L2_PIX_FMT_JPEG, Kind::Jpeg, false},
    {V4L2_PIX_FMT_H264, Kind::Other, false},
}};

Row rowOf(std::uint32_t fourCC) noexcept {
    const auto found =
        std::find_if(rows.begin(), rows.end(), [=](const Row& row) { return row.fourCC == fourCC; });
    return found == rows.end() ? Row{fourCC, Kind::None, false} : *found;
}

bool delivers(Kind kind, Delivery delivery) noexcept {
    switch (delivery) {
    case Delivery::Depth:
        return kind == Kind::Values;
    case Delivery::Color:
        return kind != Kind::None && kind != Kind::Values && kind != Kind::Other;
    case Delivery::Compressed:
        return kind == Kind::Jpeg || kind == Kind::Other;
    }
    return false;
}

/// Bytes of a line of the first plane, without padding.
std::uint32_t lineBytes(Kind kind, std::uint32_t width) {
    const bool twoBytes = kind == Kind::Values || kind == Kind::Yuyv || kind == Kind::Uyvy;
    return twoBytes ? 2 * width : width;
}

/// Bytes of a whole frame with its padding.
std::size_t wholeBytes(Kind kind, const Layout& layout) {
    const std::size_t first = std::size_t{layout.bytesPerLine} * layout.height;
    const std::size_t halfLines = (layout.height + 1) / 2;
    switch (kind) {
    case Kind::SemiPlanar:
        return first + layout.bytesPerLine * halfLines;
    case Kind::Planar:
        return first + 2 * (layout.bytesPerLine / 2) * halfLines;
    default:
        return first;
    }
}

void copyLines(const Layout& layout, std::size_t line, const std::byte* from, std::byte* to) {
    if (layout.bytesPerLine == line) {
        std::memcpy(to, from, line * layout.height);
        return;
    }
    for (std::uint32_t y = 0; y < layout.height; ++y)
        std::memcpy(to + y * line, from + std::size_t{y} * layout.bytesPerLine, line);
}

void swapLines(const Layout& layout, const std::byte* from, std::byte* to) {
    for (std::uint32_t y = 0; y < layout.height; ++y, from += layout.bytesPerLine) {
        for (std::uint32_t pair = 0; pair < layout.width / 2; ++pair, to += 4) {
            const std::byte* const uyvy = from + 4 * pair;
            to[0] = uyvy[1];
            to[1] = uyvy[0];
            to[2] = uyvy[3];
            to[3] = uyvy[2];
        }
    }
}

/// Planes with half the colour in both directions. \param step bytes from one U to the next
void weave(const Layout& layout, const std::byte* luma, const std::byte* u, const std::byte* v,
           std::size_t step, std::size_t chromaLine, std::byte* to) {
    for (std::uint32_t y = 0; y < layout.height; ++y) {
        const std::byte* const lumaAt = luma + std::size_t{y} * layout.bytesPerLine;
        const std::size_t chromaAt = y / 2 * chromaLine;
        for (std::uint32_t pair = 0; pair < layout.width / 2; ++pair, to += 4) {
            to[0] = lumaAt[2 * pair];
            to[1] = u[chromaAt + pair * step];
            to[2] = lumaAt[2 * pair + 1];
            to[3] = v[chromaAt + pair * step];
        }
    }
}

void weaveGrey(const Layout& layout, const std::byte* from, std::byte* to) {
    for (std::uint32_t y = 0; y < layout.height; ++y, from += layout.bytesPerLine) {
        for (std::uint32_t x = 0; x < layout.width; ++x, to += 2) {
            to[0] = from[x];
            to[1] = grey;
        }
    }
}

void weavePlanes(const Layout& layout, const Row& row, const std::byte* from, std::byte* to) {
    const std::byte* const behind = from + std::size_t{layout.bytesPerLine} * layout.height;
    const std::ptrdiff_t second = row.vFirst ? 1 : 0; // where U is
    if (row.kind == Kind::SemiPlanar) {
        weave(layout, from, behind + second, behind + (1 - second), 2, layout.bytesPerLine, to);
        return;
    }
    const std::size_t line = layout.bytesPerLine / 2;
    const std::byte* const next = behind + line * ((layout.height + 1) / 2);
    weave(layout, from, row.vFirst ? next : behind, row.vFirst ? behind : next, 1, line, to);
}

void checkLayout(const Layout& layout, Kind kind) {
    const auto refuse = [&layout](const char* why) {
        throw Plugin::ConfigurationPluginException(
            Format("the driver's frames are none: %: % x % pixels of %, % bytes a line, % bytes a frame") %
            why % layout.width % layout.height % Linux::fourCCText(layout.fourCC) % layout.bytesPerLine %
            layout.bytes);
    };
    if (layout.width == 0 || layout.height == 0)
        refuse("no pixels");
    if (layout.width > mostPixels || layout.height > mostPixels)
        refuse("more than 16384 pixels in a row or column");
    if (layout.bytes == 0 || layout.bytes > mostBytes)
        refuse("0 bytes, or more than 256 MiB");
    if (kind == Kind::Jpeg || kind == Kind::Other)
        return;
    if (layout.bytesPerLine < lineBytes(kind, layout.width))
        refuse("its lines are too short");
    if (wholeBytes(kind, layout) > layout.bytes)
        refuse("its buffers are too short");
}

} // namespace

bool canDeliver(std::uint32_t fourCC, Delivery delivery) noexcept {
    return delivers(rowOf(fourCC).kind, delivery);
}

Picture::Picture(const Layout& layout, Delivery delivery) {
    const Row row = rowOf(layout.fourCC);
    if (!delivers(row.kind, delivery))
        throw Plugin::NotSupportedPluginException(Format("frames of % are not supported here") %
                                                  Linux::fourCCText(layout.fourCC));
    checkLayout(layout, row.kind);
    if (delivery == Delivery::Compressed) {
        maker = [](Bytes frame, std::byte* place) {
            std::memcpy(place, frame.data(), frame.size());
            return true;
        };
        return;
    }
    if (delivery == Delivery::Color && layout.width % 2 != 0)
        throw Plugin::NotSupportedPluginException(
            Format("colour pictures of an odd width are not supported: %") % layout.width);
    fixedBytes = std::size_t{2} * layout.width * layout.height;
    if (row.kind == Kind::Jpeg) {
        maker = [layout, decoder = std::make_shared<JpegDecoder>()](Bytes frame, std::byte* place) {
            return decoder->decode(frame, layout.width, layout.height, place);
        };
        return;
    }
    leastBytes = wholeBytes(row.kind, layout);
    maker = [layout, row](Bytes frame, std::byte* place) {
        switch (row.kind) {
        case Kind::Uyvy:
            swapLines(layout, frame.data(), place);
            return true;
        case Kind::SemiPlanar:
        case Kind::Planar:
            weavePlanes(layout, row, frame.data(), place);
            return true;
        case Kind::Grey:
            weaveGrey(layout, frame.data(), place);
            return true;
        default:
            copyLines(layout, lineBytes(row.kind, layout.width), frame.data(), place);
            return true;
        }
    };
}

bool Picture::make(Bytes frame, std::byte* place) const {
    return frame.size() >= leastBytes && maker(frame, place);
}

} // namespace Zentara::V4l2
