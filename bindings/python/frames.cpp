#include "bindings/python/frames.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <pybind11/stl.h>
#include <zentara/host/lens.h>
#include <zentara/host/stream_info.h>

#include "bindings/python/arrays.h"
#include "bindings/python/values.h"

namespace Zentara::Python {
namespace {

using namespace pybind11::literals;

std::vector<py::ssize_t> shapeOf(const Host::Frame& frame) {
    return {static_cast<py::ssize_t>(frame.height()), static_cast<py::ssize_t>(frame.width())};
}

/// A plane of the frame's memory, or None where the camera sends none.
py::object planeOf(const py::object& self, std::span<const std::uint16_t> values) {
    const Host::Frame& frame = self.cast<const FrameObject&>().frame();
    return values.empty() ? py::object(py::none()) : viewOf(values.data(), shapeOf(frame), self);
}
py::object depthOf(const py::object& self) {
    return planeOf(self, self.cast<const FrameObject&>().frame().depth());
}
py::object confidenceOf(const py::object& self) {
    return planeOf(self, self.cast<const FrameObject&>().frame().confidence());
}
py::object phaseOf(const py::object& self, std::size_t index) {
    return planeOf(self, self.cast<const FrameObject&>().frame().phase(index));
}

/// Makes an array at the first use, without the interpreter's lock; later ones get the same, read-only.
template<typename T, typename Fill>
py::object once(py::object& kept, std::vector<py::ssize_t> shape, Fill fill) {
    if (!kept) {
        py::array_t<T> made(std::move(shape));
        const std::span<T> places(made.mutable_data(), static_cast<std::size_t>(made.size()));
        released([&] { fill(places); });
        made.attr("setflags")("write"_a = false);
        kept = made;
    }
    return kept;
}

py::object metresOf(FrameObject& self) {
    const Host::Frame& frame = self.frame();
    (void)frame.depth(); // of a depth frame only
    return once<float>(self.metres, shapeOf(frame), [&](std::span<float> places) { frame.metres(places); });
}

py::object millimetresOf(FrameObject& self) {
    const Host::Frame& frame = self.frame();
    (void)frame.depth();
    return once<float>(self.millimetres, shapeOf(frame),
                       [&](std::span<float> places) { frame.millimetres(places); });
}

py::object rgbOf(FrameObject& self) {
    const Host::Frame& frame = self.frame();
    std::vector<py::ssize_t> shape = shapeOf(frame);
    shape.push_back(3);
    return once<std::uint8_t>(self.rgb, std::move(shape),
                              [&](std::span<std::uint8_t> places) { frame.rgb(places); });
}

py::object samplesOf(const py::object& self) {
    const Host::Frame& frame = self.cast<const FrameObject&>().frame();
    const std::span<const std::int16_t> all = frame.samples();
    const py::ssize_t channels = std::max(1, frame.info().mode.channels);
    return viewOf(all.data(), {static_cast<py::ssize_t>(all.size()) / channels, channels}, self);
}

/// As the camera told them with the frame; by number, for a frame does not know the sensors' names.
py::dict temperaturesAt(const FrameObject& self) {
    py::dict all;
    for (const SensorValue& reading : self.frame().temperatures())
        all[py::int_(reading.sensorId)] = reading.value;
    return all;
}

Host::PointCloud pointsOf(const FrameObject& self, bool keepGrid, std::uint16_t leastConfidence) {
    const Host::Frame& frame = self.frame();
    return released([&] {
        return frame.lens().pointsOf(frame, {.keepGrid = keepGrid, .leastConfidence = leastConfidence});
    });
}

} // namespace

void bindFrame(FrameClass& frame) {
    frame
        .def_property_readonly("kind",
                               [](const FrameObject& self) { return Host::kindName(self.frame().kind()); })
        .def_property_readonly("info", [](const FrameObject& self) { return self.frame().info(); })
        .def_property_readonly(
            "number", [](const FrameObject& self) { return self.frame().number(); },
            "Its place in the stream, from 0; frames dropped on the host's side take numbers as well.")
        .def_property_readonly(
            "dropped_before", [](const FrameObject& self) { return self.frame().droppedBefore(); },
            "How many frames are missing between this one and the one before.")
        .def_property_readonly("is_first_after_return",
                               [](const FrameObject& self) { return self.frame().isFirstAfterReturn(); })
        .def_property_readonly(
            "device_micros", [](const FrameObject& self) { return self.frame().deviceMicros(); },
            "When it was taken, by the device's clock.")
        .def_property_readonly(
            "host_micros", [](const FrameObject& self) { return self.frame().hostMicros(); },
            "When it had arrived, by the host's monotonic clock.")
        .def_property_readonly("width", [](const FrameObject& self) { return self.frame().width(); })
        .def_property_readonly("height", [](const FrameObject& self) { return self.frame().height(); })
        .def_property_readonly(
            "data",
            [](const py::object& self) {
                const std::span<const std::byte> all = self.cast<const FrameObject&>().frame().bytes();
                return viewOf(reinterpret_cast<const std::uint8_t*>(all.data()),
                              {static_cast<py::ssize_t>(all.size())}, self);
            },
            "All bytes that were delivered.")
        .def_property_readonly(
            "depth", &depthOf,
            "(height, width) as delivered, in units of info.millimetres_per_unit; 0: no depth.")
        .def_property_readonly("confidence", &confidenceOf,
                               "(height, width) in the camera's own unit; None when it does not say.")
        .def("phase", &phaseOf, "index"_a = 0,
             "(height, width), 65,536 for one turn; None for a plane that is not there.")
        .def_property_readonly("metres", &metresOf, "(height, width) along the optical axis; NaN: no depth.")
        .def_property_readonly("millimetres", &millimetresOf,
                               "(height, width) along the optical axis; 0: no depth.")
        .def_property_readonly("lens", [](const FrameObject& self) { return self.frame().lens(); })
        .def_property_readonly("temperatures", &temperaturesAt,
                               "Degrees Celsius by the number of the sensor.")
        .def("points", &pointsOf, py::kw_only(), "keep_grid"_a = false, "least_confidence"_a = 0,
             "The points of a depth frame.")
        .def(
            "corrected",
            [](const FrameObject& self) {
                return frameObject(released([&] { return self.frame().corrected(); }));
            },
            "The frame with its depth corrected as far as the camera's calibration tells how.")
        .def_property_readonly(
            "uncorrected", [](const FrameObject& self) { return textsOf(self.frame().uncorrected()); },
            "What its depth is not corrected for, and why.")
        .def_property_readonly("rgb", &rgbOf, "(height, width, 3) bytes of a colour frame.")
        .def_property_readonly("samples", &samplesOf, "(number, channels) of a block of sound.")
        .def("__repr__", [](const FrameObject& self) {
            return text("<zentara.Frame " + std::to_string(self.frame().number()) + " of " +
                        self.frame().info().camera.label() + ", " + self.frame().info().mode.text() + ">");
        });
}

} // namespace Zentara::Python
