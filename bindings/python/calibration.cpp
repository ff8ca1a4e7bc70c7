#include "bindings/python/calibration.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <pybind11/stl.h>
#include <zentara/host/camera_files.h>

#include "bindings/python/values.h"

namespace Zentara::Python {
namespace {

using namespace pybind11::literals;
using Host::Camera;
using Python::dictionaryOf;

py::dict dictionaryOf(const StereoCameraParametersArray& models) {
    py::list depth;
    py::list color;
    for (const CameraIntrinsics& model : models.depthIntrinsics.values)
        depth.append(dictionaryOf(model));
    for (const CameraIntrinsics& model : models.colorIntrinsics.values)
        color.append(dictionaryOf(model));
    const auto& poses = models.extrinsics.values;
    return py::dict("depth"_a = depth, "color"_a = color,
                    "pose"_a = poses.empty() ? py::object(py::none()) : dictionaryOf(poses.front()));
}
py::dict dictionaryOf(const Host::Sources& sources) {
    return py::dict(
        "lens"_a = Host::sourceName(sources.lens), "pose"_a = Host::sourceName(sources.extrinsics),
        "corrections"_a = Host::sourceName(sources.corrections),
        "accelerometer"_a = Host::sourceName(sources.accelerometer),
        "serial_number"_a = Host::sourceName(sources.serialNumber), "failure"_a = text(sources.failure));
}

/// What the camera gives, or None where it has no such thing.
template<typename Read>
py::object partOf(const CameraObject& self, Read read) {
    using Value = std::invoke_result_t<Read, const Camera&>;
    const auto value = self.ask([read](const Camera& camera) -> std::optional<Value> {
        try {
            return read(camera);
        } catch (const Host::Unsupported&) {
            return {};
        }
    });
    if (!value)
        return py::none();
    if constexpr (std::is_same_v<Value, std::string>)
        return text(*value);
    else if constexpr (std::is_arithmetic_v<Value>)
        return py::cast(*value);
    else
        return dictionaryOf(*value);
}

py::dict calibrationOf(const CameraObject& self) {
    return py::dict(
        "lens_models"_a = partOf(self, [](const Camera& camera) { return camera.lensModels(); }),
        "corrections"_a = partOf(self, [](const Camera& camera) { return camera.corrections(); }),
        "accelerometer"_a =
            partOf(self, [](const Camera& camera) { return camera.accelerometerCalibration(); }),
        "serial_number"_a = partOf(self, [](const Camera& camera) { return camera.storedSerialNumber(); }),
        "range_metres"_a = partOf(self, [](const Camera& camera) { return camera.rangeMetres(); }),
        "sources"_a = partOf(self, [](const Camera& camera) { return camera.sources(); }));
}

// What the parameter back-end holds, as dictionaries that its JSON says -----------------------------------------------------

py::object pythonOf(const CalibrationInternal& calibration) { return fromJson(Host::toJson(calibration)); }

void write(const CameraObject& self, const py::dict& given) {
    self.finish([wanted = Host::calibrationFromJson(toJson(given), "the calibration")](const Camera& camera) {
        camera.writeCalibration(wanted);
    });
}

py::object appliedOf(const CameraObject& self) {
    const auto applied = self.ask([](const Camera& camera) { return camera.appliedCalibration(); });
    return applied ? pythonOf(*applied) : py::none();
}

} // namespace

void bindCalibration(CameraClass& bound) {
    bound
        .def("calibration", &calibrationOf,
             "What it knows of its lenses and corrections, and where that comes from.")
        .def(
            "read_calibration",
            [](const CameraObject& self) {
                return pythonOf(self.ask([](const Camera& camera) { return camera.readCalibration(); }));
            },
            "The calibration that the camera's parameters are made with.")
        .def("write_calibration", &write, "calibration"_a,
             "Replaces it, and reads it back. Ctrl-C comes through once that is done.")
        .def("applied_calibration", &appliedOf,
             "The one that its frames are made with, which comes from the camera's storage and may be "
             "another.");
}

} // namespace Zentara::Python
