#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Zentara::Tool {

/// A line of a plot: points from left to right.
struct PlotLine {
    std::string name;
    std::vector<std::pair<double, double>> points; ///< x, y
};

/// A picture of lines over axes with numbers, as a PNG file's bytes. Each line has a colour of its own, and its name
/// in that colour beside it. \throws ToolFailure when there is no point, or the picture cannot be encoded
[[nodiscard]] std::string plotPng(const std::string& title, const std::string& xLabel,
                                  const std::vector<PlotLine>& lines);

/// Round numbers that divide a range into about so many parts, the first not above `low`, the last not below
/// `high`.
[[nodiscard]] std::vector<double> plotTicks(double low, double high, int parts);

} // namespace Zentara::Tool
