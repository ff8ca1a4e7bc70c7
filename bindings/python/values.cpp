#include "bindings/python/values.h"

#include <array>
#include <string>

#include <pybind11/operators.h>
#include <pybind11/stl.h>
#include <zentara/host/failure.h>
#include <zentara/host/stream_info.h>

namespace Zentara::Python {

namespace py = pybind11;
using namespace pybind11::literals;

namespace {

/// A text field as Python's.
template<typename Owner>
auto textOf(std::string Owner::*field) {
    return [field](const Owner& owner) { return text(owner.*field); };
}

py::object correctionsOf(const Host::ModeCorrections& mode) {
    using Temperature = Host::ModeCorrections::Temperature;
    const char* temperature = mode.temperature == Temperature::None         ? "none"
                              : mode.temperature == Temperature::Linear     ? "linear"
                              : mode.temperature == Temperature::Polynomial ? "polynomial"
                                                                            : "other";
    py::dict calibratedAt;
    for (const SensorValue& reading : mode.calibratedAt.values)
        calibratedAt[py::int_(reading.sensorId)] = reading.value;
    return py::dict("temperature"_a = temperature, "temperature_parameters"_a = mode.temperatureParameters,
                    "temperature_sensors"_a = mode.temperatureSensors, "calibrated_at"_a = calibratedAt,
                    "cyclic_algorithm"_a = mode.cyclicAlgorithm,
                    "cyclic_parameters"_a = mode.cyclicParameters);
}

} // namespace

Host::DepthAlong depthAlong(const std::string& name) {
    if (name == "axis" || name == "ray")
        return name == "axis" ? Host::DepthAlong::Axis : Host::DepthAlong::Ray;
    throw Host::Failure(Host::Failure::Usage, "cannot measure depth along \"" + name + "\"", {},
                        "take \"axis\" or \"ray\"");
}

py::str text(std::string_view bytes) {
    PyObject* const made =
        PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "replace");
    if (made == nullptr)
        throw py::error_already_set();
    return py::reinterpret_steal<py::str>(made);
}

py::tuple textsOf(const std::vector<std::string>& lines) {
    py::tuple texts(lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i)
        texts[i] = text(lines[i]);
    return texts;
}

/// The library's JSON is the one form of nested values: no field is named a second time here.
py::object fromJson(const std::string& json) { return py::module_::import("json").attr("loads")(json); }

std::string toJson(const py::object& value) {
    return py::module_::import("json").attr("dumps")(value).cast<std::string>();
}

py::dict dictionaryOf(const CameraIntrinsics& model) {
    return py::dict("width"_a = model.width, "height"_a = model.height, "fx"_a = model.fx, "fy"_a = model.fy,
                    "cx"_a = model.cx, "cy"_a = model.cy, "k1"_a = model.k1, "k2"_a = model.k2,
                    "k3"_a = model.k3, "p1"_a = model.p1, "p2"_a = model.p2);
}

py::dict dictionaryOf(const ExtrinsicParametersInternal& pose) {
    using Row = std::array<float, 3>;
    return py::dict("rotation"_a = std::array<Row, 3>{Row{pose.r11, pose.r12, pose.r13},
                                                      Row{pose.r21, pose.r22, pose.r23},
                                                      Row{pose.r31, pose.r32, pose.r33}},
                    "translation"_a = Row{pose.t1, pose.t2, pose.t3});
}

ExtrinsicParametersInternal poseOf(const py::dict& pose) {
    const auto r = pose["rotation"].cast<std::array<std::array<float, 3>, 3>>();
    const auto t = pose["translation"].cast<std::array<float, 3>>();
    return {r[0][0], r[0][1], r[0][2], r[1][0], r[1][1], r[1][2],
            r[2][0], r[2][1], r[2][2], t[0],    t[1],    t[2]};
}

py::dict dictionaryOf(const Host::Corrections& corrections) {
    return py::dict(
        "phase_delay"_a = corrections.phaseDelay, "phase_delay2"_a = corrections.phaseDelay2,
        "modes"_a = py::make_tuple(correctionsOf(corrections.modes[0]), correctionsOf(corrections.modes[1])));
}

py::dict dictionaryOf(const AccelerationInternal& value) {
    return py::dict("x"_a = value.x, "y"_a = value.y, "z"_a = value.z);
}

Host::Kind kindOf(const std::string& name) {
    for (const Host::Kind kind : {Host::Kind::Depth, Host::Kind::Color, Host::Kind::Audio}) {
        if (name == Host::kindName(kind))
            return kind;
    }
    throw Host::Failure(Host::Failure::Usage, "cannot stream \"" + name + "\"", "there is no such kind",
                        "take \"depth\", \"color\" or \"audio\"");
}

void bindValues(py::module_& module) {
    using Host::CameraInfo;
    using Host::Mode;
    using Host::StreamInfo;

    py::class_<Mode>(module, "Mode",
                     "One of the ways in which a camera can stream; what its kind has not is 0.")
        .def_property_readonly("kind", [](const Mode& mode) { return Host::kindName(mode.kind); })
        .def_property_readonly("name", textOf(&Mode::name))
        .def_readonly("width", &Mode::width)
        .def_readonly("height", &Mode::height)
        .def_readonly("rate", &Mode::rate)
        .def_readonly("camera_mode", &Mode::cameraMode)
        .def_readonly("saturation", &Mode::saturation)
        .def_readonly("channels", &Mode::channels)
        .def_readonly("bits_per_sample", &Mode::bitsPerSample)
        .def("__str__", [](const Mode& mode) { return text(mode.text()); })
        .def("__repr__",
             [](const Mode& mode) { return text("<zentara.Mode " + mode.name + " " + mode.text() + ">"); })
        .def(py::self == py::self);

    py::class_<CameraInfo>(module, "CameraInfo", "Who a camera is; a text that is not known is empty.")
        .def_property_readonly("serial", textOf(&CameraInfo::serial))
        .def_property_readonly("name", textOf(&CameraInfo::name))
        .def_property_readonly("vendor", textOf(&CameraInfo::vendor))
        .def_property_readonly("product", textOf(&CameraInfo::product))
        .def_property_readonly("path", textOf(&CameraInfo::path))
        .def_property_readonly("controller", textOf(&CameraInfo::controller))
        .def_property_readonly("kinds",
                               [](const CameraInfo& info) {
                                   py::list kinds;
                                   for (const Host::Kind kind : info.kinds)
                                       kinds.append(Host::kindName(kind));
                                   return py::tuple(kinds);
                               })
        .def("__str__", [](const CameraInfo& info) { return text(info.label()); })
        .def("__repr__",
             [](const CameraInfo& info) { return text("<zentara.CameraInfo " + info.label() + ">"); })
        .def(py::self == py::self);

    py::class_<StreamInfo>(module, "StreamInfo", "What belongs to every frame of a stream.")
        .def_readonly("camera", &StreamInfo::camera)
        .def_readonly("mode", &StreamInfo::mode)
        .def_readonly("millimetres_per_unit", &StreamInfo::millimetresPerUnit)
        .def_property_readonly("depth_along",
                               [](const StreamInfo& info) { return Host::depthAlongName(info.depthAlong); })
        .def_property_readonly("lens_model",
                               [](const StreamInfo& info) -> py::object {
                                   return info.lens ? py::object(dictionaryOf(*info.lens)) : py::none();
                               })
        .def_property_readonly("pose",
                               [](const StreamInfo& info) -> py::object {
                                   return info.pose ? py::object(dictionaryOf(*info.pose)) : py::none();
                               })
        .def_property_readonly("corrections",
                               [](const StreamInfo& info) { return dictionaryOf(info.corrections); })
        .def_property_readonly("sources", [](const StreamInfo& info) {
            return py::dict("lens"_a = Host::sourceName(info.lensSource),
                            "pose"_a = Host::sourceName(info.poseSource),
                            "corrections"_a = Host::sourceName(info.correctionsSource),
                            "failure"_a = text(info.sourceFailure));
        });
}

} // namespace Zentara::Python
