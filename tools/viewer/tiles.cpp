#include "tools/viewer/tiles.h"

#include <algorithm>
#include <cmath>

#include <imgui.h>

#include <zentara/host/visible_text.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

#include "tools/viewer/colors.h"

namespace Zentara::Viewer {
namespace {

using Host::Kind;
using Phase = FeedState::Phase;
using Utils::Format;

constexpr int captionLines = 6;
constexpr double usualProportion = 4.0 / 3;
constexpr std::uint32_t emptyPicture = 0x282828;
constexpr ImU32 shade = IM_COL32(0, 0, 0, 150);
constexpr std::int64_t silenceMicros = 2'000'000;
constexpr int scaleSteps = 64;

std::string oneDecimal(double number) {
    return Format("%.%") % static_cast<long>(number) % (std::lround(number * 10) % 10);
}

std::string rateText(const StreamRate& rate) {
    return Format("% frames/s   lost %   dropped %") %
           oneDecimal(std::round(rate.framesPerSecond * 10) / 10) % rate.lost % rate.dropped;
}

/// Lines of text below a picture, cut at the cell's right side.
class Caption {
public:
    Caption(const Tile& tile, float height)
        : cell(tile.cell), line(height), left(static_cast<float>(tile.cell.x) + height / 3),
          top(static_cast<float>(tile.picture.isEmpty() ? tile.cell.y
                                                        : tile.picture.y + tile.picture.height) +
              height / 4) {
        list().PushClipRect(
            {static_cast<float>(cell.x), static_cast<float>(cell.y)},
            {static_cast<float>(cell.x + cell.width) - height / 3, static_cast<float>(cell.y + cell.height)});
    }
    ~Caption() { list().PopClipRect(); }
    Caption(const Caption&) = delete;
    Caption& operator=(const Caption&) = delete;

    static ImDrawList& list() { return *ImGui::GetBackgroundDrawList(); }

    void write(const std::string& text, ImU32 color = bright) {
        list().AddText({left, top}, color, text.c_str());
        top += line;
    }

    /// The scale: its colours, and below them the ends and the middle in millimetres.
    void writeScale(const Host::ValueRange& range) {
        const Host::ColorMap map(range, "mm", "no reading");
        const float width = static_cast<float>(cell.width) - line;
        for (int step = 0; step < scaleSteps; ++step) {
            const Host::Color color = map(range.low + (range.high - range.low) * (step + 0.5) / scaleSteps);
            list().AddRectFilled(
                {std::floor(left + width * static_cast<float>(step) / scaleSteps), top},
                {std::floor(left + width * static_cast<float>(step + 1) / scaleSteps), top + line * 0.7F},
                IM_COL32(color.red, color.green, color.blue, 255));
        }
        top += line * 0.8F;
        const auto number = [&](double value, float place) {
            const std::string text = Format("% mm") % std::lround(value);
            const float long_ = ImGui::CalcTextSize(text.c_str()).x;
            list().AddText({std::floor(left + (width - long_) * place), top}, pale, text.c_str());
        };
        number(range.low, 0);
        number((range.low + range.high) / 2, 0.5F);
        number(range.high, 1);
        top += line;
    }

private:
    const Area cell;
    const float line;
    const float left;
    float top;
};

/// What the depth camera reads where the pointer is; empty when it is elsewhere.
std::string valueUnderPointer(const Tile& tile) {
    const ImVec2 mouse = ImGui::GetIO().MousePos;
    const auto& frame = tile.frame();
    if (!frame || !tile.picture.holds(mouse.x, mouse.y))
        return {};
    const auto pixel = [](float place, int begin, int length, std::uint32_t count) {
        const auto at = static_cast<std::uint32_t>((place - static_cast<float>(begin)) *
                                                   static_cast<float>(count) / static_cast<float>(length));
        return std::min(at, count - 1);
    };
    const std::uint32_t x = pixel(mouse.x, tile.picture.x, tile.picture.width, frame->width());
    const std::uint32_t y = pixel(mouse.y, tile.picture.y, tile.picture.height, frame->height());
    const std::size_t index = static_cast<std::size_t>(y) * frame->width() + x;
    std::string text = Format("(%, %)  ") % x % y;
    if (tile.shows == Tile::Shows::Color)
        return text + "color";
    const std::uint16_t value = frame->depth()[index];
    if (value == 0)
        return text + "no reading";
    const double millimetres = value * static_cast<double>(frame->info().millimetresPerUnit);
    text += frame->info().millimetresPerUnit < 1 ? oneDecimal(millimetres)
                                                 : std::to_string(std::lround(millimetres));
    text += frame->info().depthAlong == Host::DepthAlong::Ray ? " mm along the ray" : " mm";
    const auto confidence = frame->confidence();
    return text + (index < confidence.size() ? "   confidence " + std::to_string(confidence[index])
                                             : "   the camera tells no confidence");
}

std::string titleOf(const Tile& tile) {
    const FeedState& state = tile.camera->state;
    const char* const what = tile.shows == Tile::Shows::Depth   ? "Depth  "
                             : tile.shows == Tile::Shows::Color ? "Color  "
                                                                : "Points  ";
    const Kind kind = tile.shows == Tile::Shows::Color ? Kind::Color : Kind::Depth;
    const std::string& mode = kind == Kind::Color ? state.colorRate.mode : state.depthRate.mode;
    return what + Host::visibleText(tile.camera->info.label(kind)) + (mode.empty() ? "" : "  " + mode);
}

/// What there is to say in place of a picture, or over one that is not of now.
std::string troubleOf(const Tile& tile) {
    const FeedState& state = tile.camera->state;
    switch (state.phase) {
    case Phase::Opening:
        return "opening the camera";
    case Phase::Away:
    case Phase::Ended:
    case Phase::Failed:
        return state.text;
    case Phase::Streaming:
        break;
    }
    if (tile.shows == Tile::Shows::Color && !state.colorless.empty())
        return state.colorless;
    if (tile.shows == Tile::Shows::Cloud && tile.frame() && !tile.frame()->info().lens)
        return "no point cloud: no lens model of the camera is known";
    return tile.frame() ? "" : "no frame has come yet";
}

/// The tiles of one camera, in as many columns as make its pictures largest.
void placeTiles(std::vector<Tile>& tiles, const Area& block, int captions, int border) {
    const int count = static_cast<int>(tiles.size());
    int columns = 1;
    int largest = 0;
    for (int tried = count; tried >= 1; --tried) {
        const int rows = (count + tried - 1) / tried;
        const int size = std::min(block.width / tried,
                                  static_cast<int>((block.height / rows - captions) * usualProportion));
        if (size > largest) {
            largest = size;
            columns = tried;
        }
    }
    const int rows = (count + columns - 1) / columns;
    for (int index = 0; index < count; ++index) {
        Tile& tile = tiles[static_cast<std::size_t>(index)];
        const int width = block.width / columns;
        const int height = block.height / rows;
        tile.cell = {block.x + width * (index % columns), block.y + height * (index / columns), width,
                     height};
        const Area within{tile.cell.x + border, tile.cell.y + border, width - 2 * border,
                          height - captions - border};
        const auto& frame = tile.frame();
        const bool hasSize = frame && tile.shows != Tile::Shows::Cloud;
        tile.picture = fitted(within, hasSize ? frame->width() : 4, hasSize ? frame->height() : 3);
    }
}

void writeOver(const Area& picture, const std::string& text, float lineHeight) {
    ImDrawList& list = Caption::list();
    const float x = static_cast<float>(picture.x);
    const float y = static_cast<float>(picture.y);
    const float width = static_cast<float>(picture.width);
    list.AddRectFilled({x, y}, {x + width, y + static_cast<float>(picture.height)}, shade);
    if (width > lineHeight * 4)
        list.AddText(ImGui::GetFont(), ImGui::GetFontSize(), {x + lineHeight, y + lineHeight}, bright,
                     text.c_str(), nullptr, width - 2 * lineHeight);
}

} // namespace

std::vector<Tile> layOutTiles(Scene& scene, const Area& room, float lineHeight) {
    std::vector<std::vector<Tile>> cameras;
    for (const auto& camera : scene.cameras()) {
        if (!camera->isShown())
            continue;
        std::vector<Tile> tiles;
        const auto add = [&](Tile::Shows shows) { tiles.push_back({shows, camera.get(), {}, {}}); };
        const auto has = [&](Kind kind) {
            const auto& kinds = camera->info.kinds;
            return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
        };
        if (has(Kind::Depth))
            add(Tile::Shows::Depth);
        if (has(Kind::Color))
            add(Tile::Shows::Color);
        if (has(Kind::Depth) && scene.hasCloud)
            add(Tile::Shows::Cloud);
        if (!tiles.empty())
            cameras.push_back(std::move(tiles));
    }
    const int captions = static_cast<int>(lineHeight * captionLines);
    const int height = room.height / static_cast<int>(std::max<std::size_t>(cameras.size(), 1));
    std::vector<Tile> all;
    for (std::size_t row = 0; row < cameras.size(); ++row) {
        const Area block{room.x, room.y + height * static_cast<int>(row), room.width, height};
        placeTiles(cameras[row], block, captions, static_cast<int>(lineHeight / 4));
        all.insert(all.end(), cameras[row].begin(), cameras[row].end());
    }
    return all;
}

void paintTile(const Canvas& canvas, const Tile& tile, const Scene& scene) {
    const auto& frame = tile.frame();
    SceneCamera& camera = *tile.camera;
    if (frame) {
        try {
            if (tile.shows == Tile::Shows::Color)
                return paintColor(canvas, tile.picture, *frame, camera.rgb);
            camera.colors.show(scene.range(), frame->info().millimetresPerUnit);
            if (tile.shows == Tile::Shows::Depth)
                return paintDepth(canvas, tile.picture, *frame, camera.colors);
            if (frame->info().lens)
                return camera.cloud.paint(canvas, tile.picture, *frame, camera.colors, scene.pose);
        } catch (const Host::Failure& failure) {
            camera.state.text = Host::visibleText(failure.what());
            camera.state.phase = Phase::Failed;
        }
    }
    const Area area = canvas.clip(tile.picture);
    for (int y = 0; y < area.height && area.width > 0; ++y)
        std::fill_n(canvas.row(area.y + y) + area.x, area.width, emptyPicture);
}

void captionTile(const Tile& tile, Scene& scene, float lineHeight) {
    const std::string trouble = troubleOf(tile);
    if (!trouble.empty() && !tile.picture.isEmpty())
        writeOver(tile.picture, trouble, lineHeight);
    Caption caption(tile, lineHeight);
    caption.write(titleOf(tile), tile.camera == scene.selected() ? bright : pale);
    const FeedState& state = tile.camera->state;
    if (tile.shows == Tile::Shows::Cloud) {
        caption.write(Format("% deg right, % deg up, % times") % std::lround(scene.pose.right) %
                          std::lround(scene.pose.up) % oneDecimal(scene.pose.zoom),
                      pale);
        return caption.write("drag to turn, wheel to come nearer", pale);
    }
    const bool isColor = tile.shows == Tile::Shows::Color;
    std::string rate = rateText(isColor ? state.colorRate : state.depthRate);
    const auto& frame = tile.frame();
    if (scene.isPaused())
        rate = "paused at frame " + (frame ? std::to_string(frame->number()) : std::string("-"));
    const std::int64_t silence = frame && state.phase == Phase::Streaming && !scene.isPaused()
                                     ? Utils::Clock::nowMicros() - frame->hostMicros()
                                     : 0;
    if (silence > silenceMicros)
        caption.write(Format("silent for % s") % (silence / 1'000'000), alarming);
    else
        caption.write(rate, pale);
    if (!isColor) {
        caption.writeScale(scene.range());
        caption.write(scene.followsPictures() ? "range automatic, black: no reading"
                                              : "range fixed, black: no reading",
                      pale);
    }
    const std::string value = valueUnderPointer(tile);
    if (!value.empty() && !isColor)
        caption.write(value);
    else if (!isColor && frame && !frame->uncorrected().empty())
        caption.write("not corrected: " + std::to_string(frame->uncorrected().size()) + " kinds", pale);
}

} // namespace Zentara::Viewer
