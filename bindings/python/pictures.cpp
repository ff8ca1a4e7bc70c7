#include "bindings/python/pictures.h"

#include <algorithm>
#include <string>
#include <utility>

#include <pybind11/stl.h>
#include <zentara/host/color_map.h>
#include <zentara/host/picture.h>
#include <zentara/host/plot.h>

#include "bindings/python/arrays.h"
#include "bindings/python/interpreter.h"
#include "bindings/python/values.h"

namespace Zentara::Python {
namespace {

using namespace pybind11::literals;
using Host::ColorMap;
using Host::Picture;
using Depths = Rows<std::uint16_t>;

/// A copy: who draws or writes it may outlive the call, and the array may change meanwhile.
Picture pictureOf(const Rows<std::uint8_t>& rgb) {
    const std::span<const std::uint8_t> pixels = spanOf(rgb, 3, 3, "rgb");
    return Picture::fromRgb(static_cast<std::uint32_t>(rgb.shape(1)),
                            static_cast<std::uint32_t>(rgb.shape(0)), {pixels.begin(), pixels.end()});
}

using Numbers = py::array_t<double, py::array::c_style | py::array::forcecast>;

/// {"title", "unit", "lines": {name: (x, y)}}
Host::PlotPanel panelOf(const py::dict& given) {
    Host::PlotPanel panel{given["title"].cast<std::string>(), given["unit"].cast<std::string>(), {}};
    for (const auto& [name, points] : py::dict(given["lines"])) {
        const auto [x, y] = points.cast<std::pair<Numbers, Numbers>>();
        const std::span<const double> across = spanOf(x, 1, 0, "x");
        const std::span<const double> up = spanOf(y, 1, 0, "y");
        if (across.size() != up.size())
            throw py::value_error("x has " + std::to_string(across.size()) + " numbers, and y " +
                                  std::to_string(up.size()));
        Host::PlotLine& line = panel.lines.emplace_back(Host::PlotLine{name.cast<std::string>(), {}});
        for (std::size_t i = 0; i < up.size(); ++i)
            line.points.emplace_back(across[i], up[i]);
    }
    return panel;
}

} // namespace

py::array_t<std::uint8_t> arrayOf(const Picture& picture) {
    return py::array_t<std::uint8_t>(
        {py::ssize_t{picture.height()}, py::ssize_t{picture.width()}, py::ssize_t{3}}, picture.rgb().data());
}

void bindPictures(py::module_& module) {
    py::class_<ColorMap>(
        module, "ColorMap",
        "From values to colours: red for the low end, over yellow and green, to blue for the high one;\n"
        "0 in a picture of depths is black.")
        .def(py::init([](double low, double high, std::string unit, std::string nothing) {
                 return ColorMap({low, high}, std::move(unit), std::move(nothing));
             }),
             "low"_a, "high"_a, "unit"_a = "mm", "nothing"_a = "no depth")
        .def_static(
            "of_depths",
            [](const Depths& depths, const std::string& unit) {
                return ColorMap::ofDepths(spanOf(depths, 2, 0, "depths"), unit);
            },
            "depths"_a, "unit"_a = "mm", "In the range of the depths that are there.")
        .def_property_readonly("low", [](const ColorMap& map) { return map.range().low; })
        .def_property_readonly("high", [](const ColorMap& map) { return map.range().high; })
        .def_property_readonly("unit", [](const ColorMap& map) { return text(map.unit()); })
        .def(
            "paint",
            [](const ColorMap& map, const Depths& depths) {
                const std::span<const std::uint16_t> values = spanOf(depths, 2, 0, "depths");
                const auto width = static_cast<std::uint32_t>(depths.shape(1));
                const auto height = static_cast<std::uint32_t>(depths.shape(0));
                return arrayOf(released([&] { return map.paint(values, width, height); }));
            },
            "depths"_a, "A picture in these colours: (height, width, 3) bytes.")
        .def(
            "explain",
            [](const ColorMap& map, const Rows<std::uint8_t>& rgb, const std::string& title) {
                return arrayOf(map.explain(pictureOf(rgb), title));
            },
            "rgb"_a, "title"_a, "The picture with a title, the scale, and what black stands for.");
    module.def(
        "plot",
        [](const std::string& xLabel, const std::vector<py::dict>& panels) {
            std::vector<Host::PlotPanel> all;
            std::transform(panels.begin(), panels.end(), std::back_inserter(all), panelOf);
            return arrayOf(aside([xLabel, all = std::move(all)] { return Host::plot(xLabel, all); }));
        },
        "x_label"_a, "panels"_a,
        "A picture of lines, (height, width, 3) bytes: panels with axes of their own, below each other.");
    module.def(
        "write_png",
        [](const PathText& path, const Rows<std::uint8_t>& rgb) {
            aside([picture = pictureOf(rgb), path = path.name] { picture.writePng(path); });
        },
        "path"_a, "rgb"_a, "Writes a picture of (height, width, 3) bytes as PNG, whole or not at all.");
}

} // namespace Zentara::Python
