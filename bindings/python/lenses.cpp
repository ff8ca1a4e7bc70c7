#include "bindings/python/pictures.h"

#include <pybind11/stl.h>
#include <zentara/host/lens.h>

#include "bindings/python/arrays.h"
#include "bindings/python/interpreter.h"
#include "bindings/python/values.h"

namespace Zentara::Python {

namespace {

using namespace pybind11::literals;
using Host::Lens;

/// A matrix of its own, row by row.
template<std::size_t Size>
py::array_t<double> matrix(const std::array<double, Size>& numbers, std::vector<py::ssize_t> shape) {
    return py::array_t<double>(std::move(shape), numbers.data());
}

/// Depth and confidence lie in NumPy's memory, which the call keeps: no copy, and the lock is free meanwhile.
Host::PointCloud pointsOf(const Lens& lens, const Rows<std::uint16_t>& depth, bool keepGrid,
                          std::uint16_t leastConfidence,
                          const std::optional<Rows<std::uint16_t>>& confidence) {
    const std::span<const std::uint16_t> values = spanOf(depth, 2, 0, "depth");
    std::span<const std::uint16_t> doubts;
    if (confidence)
        doubts = spanOf(*confidence, 2, depth.shape(1), "confidence");
    const auto width = static_cast<std::uint32_t>(depth.shape(1));
    const auto height = static_cast<std::uint32_t>(depth.shape(0));
    return released([&] {
        return lens.pointsOf(values, width, height, {keepGrid, leastConfidence}, doubts);
    });
}

} // namespace

void bindLens(LensClass& bound) {
    bound
        .def(py::init([](std::uint16_t width, std::uint16_t height, float fx, float fy, float cx, float cy,
                         float k1, float k2, float k3, float p1, float p2, const std::string& along,
                         std::string owner) {
                 return Lens({width, height, fx, fy, cx, cy, k1, k2, k3, p1, p2}, depthAlong(along),
                             std::move(owner));
             }),
             py::kw_only(), "width"_a, "height"_a, "fx"_a, "fy"_a, "cx"_a, "cy"_a, "k1"_a = 0, "k2"_a = 0,
             "k3"_a = 0, "p1"_a = 0, "p2"_a = 0, "depth_along"_a = "axis", "owner"_a = "lens")
        .def_property_readonly(
            "model", [](const Lens& lens) { return dictionaryOf(lens.model()); },
            "The numbers of the lens by name, focal lengths and centre in pixels.")
        .def_property_readonly("depth_along",
                               [](const Lens& lens) { return Host::depthAlongName(lens.depthAlong()); })
        .def_property_readonly("owner", [](const Lens& lens) { return text(lens.owner()); })
        .def(
            "ray",
            [](const Lens& lens, float x, float y) -> py::object {
                const std::optional<Host::Point> ray = lens.ray({x, y});
                return ray ? py::object(py::make_tuple(ray->x, ray->y, ray->z)) : py::none();
            },
            "x"_a, "y"_a, "The point (x, y, 1) that is seen at that pixel; None where there is none.")
        .def(
            "project",
            [](const Lens& lens, float x, float y, float z) -> py::object {
                const std::optional<Host::PixelPlace> place = lens.project({x, y, z});
                return place ? py::object(py::make_tuple(place->x, place->y)) : py::none();
            },
            "x"_a, "y"_a, "z"_a,
            "Where a point is seen, in pixels; None when it is not in front of the camera.")
        .def_property_readonly(
            "camera_matrix",
            [](const Lens& lens) {
                return matrix(lens.cameraMatrix(), {3, 3});
            },
            "fx 0 cx, 0 fy cy, 0 0 1, as OpenCV wants it.")
        .def_property_readonly(
            "distortion", [](const Lens& lens) { return matrix(lens.distortionCoefficients(), {5}); },
            "k1 k2 p1 p2 k3, as OpenCV wants them.")
        .def("points_of", &pointsOf, "depth"_a, py::kw_only(), "keep_grid"_a = false,
             "least_confidence"_a = 0, "confidence"_a = py::none(),
             "The points of a picture of depths in millimetres; 0: no depth.");
}

} // namespace Zentara::Python
