#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Zentara::Host {

/// A line of a plot: points from left to right.
struct PlotLine {
    std::string name;
    std::vector<std::pair<double, double>> points; ///< x, y
};

/// Lines over axes of their own, with a title above that names what is measured, in which unit.
struct PlotPanel {
    std::string title;
    std::vector<PlotLine> lines;
};

/// A picture of panels, one below the other, as a PNG file's bytes. Each line has a colour of its own, and its name in
/// that colour beside the title. \throws Failure when a panel has no point, or the picture cannot be encoded
[[nodiscard]] std::string plotPng(const std::string& xLabel, const std::vector<PlotPanel>& panels);

/// Round numbers that divide a range into about so many parts, the first not above `low`, the last not below
/// `high`.
[[nodiscard]] std::vector<double> plotTicks(double low, double high, int parts);

} // namespace Zentara::Host
