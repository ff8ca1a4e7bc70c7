#include "bindings/python/frame_sets.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <pybind11/stl.h>

#include "bindings/python/arrays.h"
#include "bindings/python/frames.h"
#include "bindings/python/streams.h"
#include "bindings/python/values.h"

namespace Zentara::Python {
namespace {

using namespace pybind11::literals;
using Host::FrameSet;
using Host::FrameSets;

py::object frameOrNone(const std::optional<Host::Frame>& frame) {
    return frame ? py::cast(frameObject(*frame)) : py::object(py::none());
}

/// The colours in the grid of the depth, and where there is one.
py::tuple colorOf(const FrameSetObject& self) {
    const auto colors = released([set = self.set] { return Host::colourOf(set); });
    const py::ssize_t height = self.set.depth->height();
    const py::ssize_t width = self.set.depth->width();
    py::array_t<std::uint8_t> rgb({height, width, py::ssize_t{3}});
    py::array_t<bool> isColored({height, width});
    std::uint8_t* place = rgb.mutable_data();
    bool* seen = isColored.mutable_data();
    for (const std::optional<Host::Color>& one : colors) {
        const Host::Color color = one.value_or(Host::Color{});
        *seen++ = one.has_value();
        *place++ = color.red;
        *place++ = color.green;
        *place++ = color.blue;
    }
    return py::make_tuple(rgb, isColored);
}

} // namespace

/// Python's frames are made once, so that `frames.depth is frames.depth`, and arrays made of it are kept.
FrameSetObject::FrameSetObject(FrameSet given)
    : set(std::move(given)), depth(frameOrNone(set.depth)), color(frameOrNone(set.color)),
      audio(set.audio.size()) {
    for (std::size_t i = 0; i < set.audio.size(); ++i)
        audio[i] = py::cast(frameObject(set.audio[i]));
}

FrameSetsObject::FrameSetsObject(FrameSets sets, std::chrono::milliseconds patience)
    : held(std::make_shared<Shared>(std::move(sets))), limit(patience) {
    endAtExit<Shared>(held.share(), [](Shared& still) { still.sets.stop(); });
}

std::optional<FrameSet> FrameSetsObject::next(std::optional<double> seconds) const {
    const std::chrono::milliseconds patience = seconds ? millisecondsOf(*seconds) : limit;
    auto set = waiting([patience, shared = held.share()](const Host::GoOn& goOn) {
        const auto end = std::chrono::steady_clock::now() + patience;
        std::unique_lock hold(shared->lock, std::defer_lock);
        while (!hold.try_lock_for(slice)) { // somebody else waits for a set
            if (!goOn())
                throw Host::Failure(Host::Failure::Interrupted, "interrupted");
        }
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        return shared->sets.next(std::max(left, std::chrono::milliseconds(0)), goOn);
    });
    tellNotes();
    return set;
}

void FrameSetsObject::stop() const {
    if (!isLeftBehind())
        interruptible([shared = held.share()] { shared->sets.stop(); });
}

void bindFrameSets(py::module_& module, FrameSetsClass& bound) {
    py::class_<FrameSetObject>(module, "FrameSet",
                               "What several streams of one camera delivered at one time.")
        .def_readonly("depth", &FrameSetObject::depth)
        .def_readonly("color", &FrameSetObject::color)
        .def_readonly(
            "audio", &FrameSetObject::audio,
            "The blocks of sound that begin before the end of its time, without a gap from set to set.")
        .def_property_readonly("begin_micros",
                               [](const FrameSetObject& self) { return self.set.beginMicros; })
        .def_property_readonly("end_micros", [](const FrameSetObject& self) { return self.set.endMicros; })
        .def_property_readonly(
            "missing", [](const FrameSetObject& self) { return textsOf(self.set.missing); },
            "What is missing of what was asked for, and why.")
        .def_property_readonly("complete", [](const FrameSetObject& self) { return self.set.complete(); });
    const auto next = [](const FrameSetsObject& self, std::optional<double> limit) {
        std::optional<FrameSet> set = self.next(limit);
        return set ? std::make_unique<FrameSetObject>(std::move(*set)) : nullptr;
    };
    bound.def("__iter__", [](const py::object& self) { return self; })
        .def("__next__",
             [next](const FrameSetsObject& self) {
                 auto set = next(self, {});
                 if (!set)
                     throw py::stop_iteration();
                 return set;
             })
        .def("next", next, "limit"_a = py::none(),
             "The next set, in order; None at the end. The limit is in seconds.")
        .def("stop", &FrameSetsObject::stop,
             "Ends the streams, in 2 s at most; who waits for a set is woken.")
        .def("__enter__", [](const py::object& self) { return self; })
        .def("__exit__", [](const FrameSetsObject& self, const py::args&) { self.stop(); });
    module.def("colour_of", &colorOf, "frames"_a,
               "The set's colours in the grid of its depth: (height, width, 3) bytes, and (height, width) "
               "whether the\n"
               "pixel has one: not without depth, nor where the colour camera does not see the point.");
}

} // namespace Zentara::Python
