#pragma once

#include <memory>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <zentara/host/lens.h>
#include <zentara/host/picture.h>
#include <zentara/host/point_cloud.h>

namespace Zentara::Python {

namespace py = pybind11;

using LensClass = py::class_<Host::Lens>;
using PointCloudClass = py::class_<Host::PointCloud, std::shared_ptr<Host::PointCloud>>;

/// (height, width, 3) bytes.
[[nodiscard]] py::array_t<std::uint8_t> arrayOf(const Host::Picture& picture);

void bindLens(LensClass& lens);
void bindPointCloud(PointCloudClass& cloud);
/// ColorMap, plots, and pictures to files.
void bindPictures(py::module_& module);

} // namespace Zentara::Python
