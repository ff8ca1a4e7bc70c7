#pragma once

#include <string>
#include <utility>
#include <vector>

#include <zentara/host/export.h>
#include <zentara/host/picture.h>

namespace Zentara::Host {

/// One line of a plot. A plain value. Separate.
struct PlotLine {
    std::string name;                              ///< for the legend
    std::vector<std::pair<double, double>> points; ///< x, y; a NaN leaves a gap
};

/// Lines over axes of their own. A plain value. Separate.
struct PlotPanel {
    std::string title;           ///< what is measured: "Temperatures of SIM0570"
    std::string unit;            ///< of all its lines: "degC"
    std::vector<PlotLine> lines; ///< each in a colour of its own
};

/// A picture of panels, one below the other, each with title and unit above it. Each line has a colour of its own, and
/// its name in that colour beside the title. Letters beyond ASCII become '?'.
/// \param xLabel of all panels, with its unit: "seconds"
/// \throws Failure (Failed) when there is no panel, or one has no point, or an infinite one
[[nodiscard]] ZENTARA_HOST_API Picture plot(const std::string& xLabel, const std::vector<PlotPanel>& panels);

} // namespace Zentara::Host
