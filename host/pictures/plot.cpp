#include <zentara/host/plot.h>

#include <algorithm>
#include <array>
#include <cmath>

#include <zentara/host/failure.h>
#include <zentara/utils/format.h>

#include "host/pictures/canvas.h"
#include "host/pictures/ticks.h"

namespace Zentara::Host {
namespace {

constexpr int width = 800;
constexpr int height = 450;
constexpr int left = 85;
constexpr int right = 30;
constexpr int top = 40;
constexpr int bottom = 65;
constexpr int wantedTicks = 6;
constexpr Color gray{215, 215, 215};
constexpr std::array<Color, 6> lineColors{
    {{200, 30, 30}, {30, 80, 200}, {20, 140, 60}, {190, 110, 0}, {130, 40, 160}, {0, 130, 140}}};

/// From values to pixels.
struct Scale {
    double low;
    double high;
    double first;
    double last;

    [[nodiscard]] double operator()(double value) const {
        return first + (value - low) / (high - low) * (last - first);
    }
};

bool isThere(const std::pair<double, double>& point) {
    return !std::isnan(point.first) && !std::isnan(point.second);
}

template<typename Member>
std::pair<double, double> extent(const std::vector<PlotLine>& lines, Member member) {
    std::pair<double, double> found{HUGE_VAL, -HUGE_VAL};
    for (const PlotLine& line : lines) {
        for (const auto& point : line.points) {
            if (!isThere(point))
                continue;
            found.first = std::min(found.first, point.*member);
            found.second = std::max(found.second, point.*member);
        }
    }
    // Without any value the one is still above the other.
    if (!(found.first <= found.second))
        throw Failure(Failure::Failed, "there is nothing to plot");
    if (!std::isfinite(found.second - found.first))
        throw Failure(Failure::Failed,
                      Utils::Format("values from % to % cannot be plotted") % found.first % found.second);
    return found;
}

void drawPanel(Canvas& canvas, int offset, const std::string& title, const std::string& xLabel,
               const std::vector<PlotLine>& lines) {
    const int floor = offset + height - bottom;
    const int roof = offset + top;
    using Point = std::pair<double, double>;
    const auto [xLow, xHigh] = extent(lines, &Point::first);
    const auto [yLow, yHigh] = extent(lines, &Point::second);
    const std::vector<double> xTicks = plotTicks(xLow, xHigh, wantedTicks);
    const std::vector<double> yTicks = plotTicks(yLow, yHigh, wantedTicks);
    const double xEnd = xHigh > xTicks.front() ? xHigh : xTicks.back(); // lines go up to the edge
    const Scale xScale{xTicks.front(), xEnd, left, width - right};
    const Scale yScale{yTicks.front(), yTicks.back(), static_cast<double>(floor), static_cast<double>(roof)};

    for (const double tick : xTicks) {
        if (tick > xEnd)
            continue;
        canvas.line(xScale(tick), roof, xScale(tick), floor, gray, 1);
        const std::string number = tickText(tick);
        canvas.text(static_cast<int>(xScale(tick)) - Canvas::textWidth(number) / 2, floor + 8, number, black);
    }
    for (const double tick : yTicks) {
        canvas.line(left, yScale(tick), width - right, yScale(tick), gray, 1);
        const std::string number = tickText(tick);
        canvas.text(left - 8 - Canvas::textWidth(number),
                    static_cast<int>(yScale(tick)) - Canvas::textHeight / 2, number, black);
    }
    canvas.line(left, roof, left, floor, black, 1);
    canvas.line(left, floor, width - right, floor, black, 1);
    canvas.text(left, offset + 14, title, black);
    canvas.text((width - Canvas::textWidth(xLabel)) / 2, offset + height - 28, xLabel, black);

    int legend = left + Canvas::textWidth(title) + 30;
    for (std::size_t index = 0; index < lines.size(); ++index) {
        const Color color = lineColors[index % lineColors.size()];
        const auto& points = lines[index].points;
        // A point that is missing leaves a gap on both sides.
        for (std::size_t point = 1; point < points.size(); ++point) {
            if (isThere(points[point - 1]) && isThere(points[point]))
                canvas.line(xScale(points[point - 1].first), yScale(points[point - 1].second),
                            xScale(points[point].first), yScale(points[point].second), color, 2);
        }
        canvas.text(legend, offset + 14, lines[index].name, color);
        legend += Canvas::textWidth(lines[index].name) + 20;
    }
}

} // namespace

Picture plot(const std::string& xLabel, const std::vector<PlotPanel>& panels) {
    if (panels.empty())
        throw Failure(Failure::Failed, "there is nothing to plot");
    Canvas canvas(width, height * static_cast<int>(panels.size()));
    int offset = 0;
    for (const PlotPanel& panel : panels) {
        drawPanel(canvas, offset, panel.title + (panel.unit.empty() ? "" : ", " + panel.unit), xLabel,
                  panel.lines);
        offset += height;
    }
    return canvas.picture();
}

} // namespace Zentara::Host
