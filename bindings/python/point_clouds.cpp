#include <pybind11/stl.h>
#include <zentara/host/cloud_view.h>
#include <zentara/host/lens.h>
#include <zentara/host/output_file.h>
#include <zentara/host/point_cloud.h>

#include "bindings/python/arrays.h"
#include "bindings/python/interpreter.h"
#include "bindings/python/pictures.h"
#include "bindings/python/values.h"

namespace Zentara::Python {
namespace {

using namespace pybind11::literals;
using Host::Color;
using Host::PointCloud;

static_assert(sizeof(Host::Point) == 3 * sizeof(float), "rows of the array are points");

/// A copy: the library keeps colour and whether there is one side by side, and NumPy wants arrays of numbers.
py::object colors(const PointCloud& cloud) {
    const std::span<const std::optional<Color>> all = cloud.colors();
    if (all.empty())
        return py::none();
    py::array_t<std::uint8_t> made({static_cast<py::ssize_t>(all.size()), py::ssize_t{3}});
    std::uint8_t* place = made.mutable_data();
    for (const std::optional<Color>& one : all) {
        const Color color = one.value_or(Color{});
        *place++ = color.red;
        *place++ = color.green;
        *place++ = color.blue;
    }
    return made;
}

py::object isColored(const PointCloud& cloud) {
    const std::span<const std::optional<Color>> all = cloud.colors();
    py::array_t<bool> made(static_cast<py::ssize_t>(cloud.points().size()));
    for (std::size_t i = 0; i < cloud.points().size(); ++i)
        made.mutable_at(static_cast<py::ssize_t>(i)) = i < all.size() && all[i].has_value();
    return made;
}

} // namespace

void bindPointCloud(PointCloudClass& bound) {
    bound
        .def_property_readonly(
            "points",
            [](const py::object& self) {
                const std::span<const Host::Point> all = self.cast<const PointCloud&>().points();
                return viewOf(reinterpret_cast<const float*>(all.data()),
                              {static_cast<py::ssize_t>(all.size()), 3}, self);
            },
            "(N, 3) metres, read-only; the array keeps the cloud.")
        .def_property_readonly(
            "colors", &colors,
            "(N, 3) bytes, black where a point has none; None for a cloud without colours.")
        .def_property_readonly("is_colored", &isColored, "(N,) whether the point has a colour.")
        .def("__len__", [](const PointCloud& cloud) { return cloud.points().size(); })
        .def_property_readonly("width", &PointCloud::width)
        .def_property_readonly("height", &PointCloud::height)
        .def_property_readonly("without_depth", &PointCloud::withoutDepth)
        .def_property_readonly("below_confidence", &PointCloud::belowConfidence)
        .def_property_readonly("without_ray", &PointCloud::withoutRay)
        .def(
            "colored",
            [](const PointCloud& cloud, const Rows<std::uint8_t>& rgb, const Host::Lens& lens,
               const py::dict& pose) {
                const std::span<const std::uint8_t> pixels = spanOf(rgb, 3, 3, "rgb");
                const ExtrinsicParametersInternal numbers = poseOf(pose);
                return released([&] {
                    PointCloud made = cloud;
                    made.colorFrom(pixels, lens, numbers);
                    return made;
                });
            },
            "rgb"_a, "lens"_a, "pose"_a,
            "The same points with the colours of another camera's picture; the pose leads to that camera.")
        .def(
            "draw",
            [](const std::shared_ptr<PointCloud>& cloud, const std::string& title, double right, double up,
               std::uint32_t width, std::uint32_t height, bool ownColors,
               std::optional<std::pair<double, double>> range) {
                Host::CloudView view{right, up, width, height, ownColors, {}};
                if (range)
                    view.range = Host::ValueRange{range->first, range->second};
                return arrayOf(aside([=] { return view.draw(*cloud, title); }));
            },
            "title"_a, py::kw_only(), "right"_a = 30.0, "up"_a = 20.0, "width"_a = 640, "height"_a = 480,
            "own_colors"_a = false, "range"_a = py::none(),
            "A picture of it, (height, width, 3) bytes, from so many degrees to the right of the camera and "
            "above it:\n"
            "in its own colours, or in those of the distance, with a scale in metres.")
        .def(
            "write_ply",
            [](const std::shared_ptr<PointCloud>& cloud, const PathText& path, bool binary) {
                aside([cloud, path = path.name, binary] {
                    cloud->writePly(path,
                                    binary ? PointCloud::PlyFormat::Binary : PointCloud::PlyFormat::Text);
                });
            },
            "path"_a, py::kw_only(), "binary"_a = true);
}

} // namespace Zentara::Python
