#pragma once

#include <pybind11/pybind11.h>
#include <zentara/host/lens.h>
#include <zentara/host/point_cloud.h>

namespace Zentara::Python {

namespace py = pybind11;

using LensClass = py::class_<Host::Lens>;
using PointCloudClass = py::class_<Host::PointCloud>;

void bindLens(LensClass& lens);
void bindPointCloud(PointCloudClass& cloud);
/// ColorMap, and pictures to files.
void bindPictures(py::module_& module);

} // namespace Zentara::Python
