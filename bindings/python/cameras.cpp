#include "bindings/python/cameras.h"

#include <array>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <pybind11/stl.h>
#include <zentara/host/cameras.h>
#include <zentara/host/own_root.h>

#include "bindings/python/flash.h"
#include "bindings/python/frame_sets.h"
#include "bindings/python/streams.h"
#include "bindings/python/values.h"

namespace Zentara::Python {
namespace {

using namespace pybind11::literals;
using Host::Camera;
using Host::Kind;
using Host::Parameter;
using Python::dictionaryOf;

using Word = std::variant<int, std::string>; ///< a parameter's number or name

std::unique_ptr<CameraObject> open(const std::string& name) {
    return std::make_unique<CameraObject>(interruptible([name] { return newCameras()->open(name); }));
}

// Streams ------------------------------------------------------------------------------------------------------------

std::unique_ptr<StreamObject> streamOf(const CameraObject& self, Kind kind,
                                       const Host::StreamOptions& options,
                                       std::optional<std::uint64_t> frames, double limit) {
    const std::chrono::milliseconds patience = millisecondsOf(limit);
    return std::make_unique<StreamObject>(
        self.ask([options, kind](const Camera& camera) { return camera.stream(kind, options); }), frames,
        patience);
}

/// The streams are opened without beginning: the sets begin them together, once there is a reader for each.
FrameSetsObject* setsOf(const CameraObject& self, const std::optional<std::string>& depth,
                        const std::optional<std::string>& color, const std::optional<std::string>& audio,
                        double patience, double limit, std::size_t queue) {
    const std::chrono::milliseconds each = millisecondsOf(limit);
    const Host::FrameSets::Options options{millisecondsOf(patience)};
    const std::array wanted{std::pair(Kind::Depth, depth), std::pair(Kind::Color, color),
                            std::pair(Kind::Audio, audio)};
    return new FrameSetsObject(self.ask([wanted, options, queue](const Camera& camera) {
        std::vector<Host::Stream> streams;
        for (const auto& [kind, mode] : wanted) {
            if (mode)
                streams.push_back(camera.stream(kind, {.mode = *mode, .queue = queue, .started = false}));
        }
        return Host::FrameSets(std::move(streams), options);
    }),
                               each);
}

// Parameters ---------------------------------------------------------------------------------------------------------

py::object pythonOf(const Host::ParameterValue& value) {
    return std::visit(
        [](const auto& one) -> py::object {
            if constexpr (std::is_same_v<std::decay_t<decltype(one)>, RegionOfInterestInternal>)
                return py::make_tuple(one.x, one.y, one.width, one.height);
            else
                return py::cast(one);
        },
        value);
}

py::dict dictionaryOf(const Parameter& parameter) {
    py::list ranges;
    for (const Host::NumberRange& range : parameter.ranges)
        ranges.append(range.isList
                          ? py::object(py::dict("values"_a = range.values))
                          : py::object(py::dict("least"_a = range.least, "greatest"_a = range.greatest,
                                                "step"_a = range.step)));
    return py::dict("number"_a = parameter.number, "name"_a = text(parameter.name),
                    "kind"_a = Host::kindName(parameter.kind), "is_readable"_a = parameter.isReadable,
                    "is_writable"_a = parameter.isWritable, "unit"_a = Host::unitName(parameter.unit),
                    "value"_a = parameter.value ? pythonOf(*parameter.value) : py::none(),
                    "ranges"_a = ranges);
}

int numberOf(const Camera& camera, const Word& word) {
    const int* const number = std::get_if<int>(&word);
    return number != nullptr ? *number : camera.parameterNumber(std::get<std::string>(word));
}

/// By its name, or by its number where it has none, or one that another one has: no entry takes another's place.
void put(py::dict& all, const std::string& name, int number, const py::object& value) {
    const py::str word = text(name);
    all[name.empty() || all.contains(word) ? py::object(py::int_(number)) : py::object(word)] = value;
}

py::dict parametersOf(const CameraObject& self) {
    py::dict all;
    for (const Parameter& one : self.ask([](const Camera& camera) { return camera.parameters(); })) {
        if (one.isSupported)
            put(all, one.name, one.number, dictionaryOf(one));
    }
    return all;
}

/// True and False, and those of NumPy: nothing else passes for a switch.
bool isSwitch(const py::object& value) {
    const std::string type = Py_TYPE(value.ptr())->tp_name;
    return PyBool_Check(value.ptr()) || type == "numpy.bool_" || type == "numpy.bool";
}

/// The value as the parameter's own kind; what does not fit it goes as it is, and is refused by the library.
Host::ParameterValue valueFor(int number, const py::object& value) {
    if (isSwitch(value))
        return value.cast<bool>();
    if (PySequence_Check(value.ptr()) != 0) {
        py::detail::make_caster<std::array<std::uint32_t, 4>> region;
        if (!region.load(value, true))
            throw py::type_error("a region is four whole numbers: x, y, width and height");
        const std::array<std::uint32_t, 4>& numbers = region;
        return RegionOfInterestInternal{numbers[0], numbers[1], numbers[2], numbers[3]};
    }
    if (PyIndex_Check(value.ptr()) == 0 || Host::parameterKind(number) == Host::ParameterKind::Float)
        return static_cast<float>(py::float_(value)); // of whatever can be one
    int leaves = 0;
    const long long whole = PyLong_AsLongLongAndOverflow(py::int_(value).ptr(), &leaves);
    if (leaves != 0 || !std::in_range<std::int32_t>(whole))
        throw py::value_error("a parameter's whole number has 32 bits, which " +
                              py::str(value).cast<std::string>() + " has not");
    return static_cast<std::int32_t>(whole);
}

/// The number first: it fixes the value's kind, so that 5 for a float is no mistake.
void setParameter(const CameraObject& self, const Word& word, const py::object& value) {
    const int number = self.ask([word](const Camera& camera) { return numberOf(camera, word); });
    self.ask([number, wanted = valueFor(number, value)](const Camera& camera) {
        camera.setParameter(number, wanted);
    });
}

// Sensors --------------------------------------------------------------------------------------------

py::dict temperaturesOf(const CameraObject& self) {
    py::dict all;
    for (const Host::Temperature& one : self.ask([](const Camera& camera) { return camera.temperatures(); }))
        put(all, one.name, one.sensor, py::float_(one.celsius));
    return all;
}

py::object accelerometerOf(const CameraObject& self) {
    const std::optional<Host::Acceleration> read =
        self.ask([](const Camera& camera) { return camera.accelerometer(); });
    return read ? py::object(dictionaryOf(read->value)) : py::none();
}

} // namespace

std::shared_ptr<Host::Cameras> newCameras() {
    Host::Cameras::Options options;
    options.note = notes();
    return std::make_shared<Host::Cameras>(std::move(options));
}

CameraObject::CameraObject(Camera camera) : held(std::move(camera)) {
    endAtExit<Camera>(held.share(), [](Camera& still) { still.close(); });
}

void bindCamera(CameraClass& bound) {
    for (const Kind kind : {Kind::Depth, Kind::Color, Kind::Audio})
        bound.def(
            Host::kindName(kind),
            [kind](const CameraObject& self, const std::string& mode, std::optional<std::uint64_t> frames,
                   double limit, std::size_t queue, bool awaitReturn, bool started, bool shared) {
                return streamOf(self, kind, {mode, queue, awaitReturn, started, false, shared}, frames,
                                limit);
            },
            py::kw_only(), "mode"_a = "", "frames"_a = py::none(), "limit"_a = 2.0, "queue"_a = 4,
            "await_return"_a = false, "started"_a = true, "shared"_a = false,
            "A stream of the camera. frames: after how many it ends; limit: how many seconds `for` waits for "
            "one;\n"
            "queue: how many are kept, the oldest is dropped; await_return: goes on when the camera is "
            "back;\n"
            "shared: gives its frames to other programs that say so, or reads theirs.");
    bound
        .def("frame_sets", &setsOf, py::kw_only(), "depth"_a = "", "color"_a = "", "audio"_a = py::none(),
             "patience"_a = 0.2, "limit"_a = 2.0, "queue"_a = 8,
             "What its streams deliver at one time, for `for`. depth, color, audio: a mode, \"\" for the "
             "first one, None\n"
             "for none; patience: how many seconds a set waits for what is missing.")
        .def("flash", &flashOf, py::kw_only(), "write"_a = false, "start"_a = py::none(), "size"_a = 0,
             "Its flash, where the description says that the calibration lies, or start and size say.");
    bound.def_property_readonly("info", [](const CameraObject& self) { return self.camera().info(); })
        .def(
            "modes",
            [](const CameraObject& self, const std::string& kind) {
                return self.ask([kind = kindOf(kind)](const Camera& camera) { return camera.modes(kind); });
            },
            "kind"_a = "depth", "The modes in which it streams, the default one first.")
        .def(
            "stream_info",
            [](const CameraObject& self, const std::string& kind, const std::string& mode) {
                return self.ask([kind = kindOf(kind), mode](const Camera& camera) {
                    return camera.streamInfo(kind, mode);
                });
            },
            "kind"_a = "depth", "mode"_a = "", "What belongs to every frame of a stream in that mode.")
        .def(
            "lens",
            [](const CameraObject& self, const std::string& kind, const std::string& mode) {
                return self.ask(
                    [kind = kindOf(kind), mode](const Camera& camera) { return camera.lens(kind, mode); });
            },
            "kind"_a = "depth", "mode"_a = "", "The lens of a stream in that mode.")
        .def("parameters", &parametersOf, "All parameters by name, or by number where one has no name.")
        .def(
            "parameter",
            [](const CameraObject& self, const Word& word) {
                return dictionaryOf(self.ask(
                    [word](const Camera& camera) { return camera.parameter(numberOf(camera, word)); }));
            },
            "name"_a, "One of them, by name or number.")
        .def("set_parameter", &setParameter, "name"_a, "value"_a,
             "Sets one, by name or number; the camera may round. A region is (x, y, width, height).")
        .def("temperatures", &temperaturesOf, "Degrees Celsius by the sensor's name, or its number.")
        .def("accelerometer", &accelerometerOf, "x, y and z in g; None for a camera without one.")
        .def(
            "close", [](const CameraObject& self) { self.ask([](const Camera& camera) { camera.close(); }); },
            "Closes the camera; its streams end.")
        .def("__enter__", [](const py::object& self) { return self; })
        .def("__exit__", [](const CameraObject& self,
                            const py::args&) { self.ask([](const Camera& camera) { camera.close(); }); })
        .def("__repr__", [](const CameraObject& self) {
            return text("<zentara.Camera " + self.camera().info().label() + ">");
        });
}

void bindCameras(py::module_& module) {
    module.def("_use_root", &Host::useRootIfNone);
    module.def(
        "cameras", [] { return interruptible([] { return newCameras()->list(); }); },
        "The cameras that are plugged in.");
    module.def("open", &open, "name"_a = "",
               "Opens the camera of that serial number or path, or with that in its name; the first one "
               "without a name.");
}

} // namespace Zentara::Python
