#include "bindings/python/streams.h"

#include <cmath>

#include <pybind11/stl.h>
#include <zentara/host/stream_info.h>

#include "bindings/python/values.h"

namespace Zentara::Python {
namespace {

using namespace pybind11::literals;
using Host::Stream;

const char* nameOf(Stream::State state) {
    switch (state) {
    case Stream::State::Waiting:
        return "waiting";
    case Stream::State::Streaming:
        return "streaming";
    case Stream::State::Away:
        return "away";
    case Stream::State::Ended:
        return "ended";
    case Stream::State::Unplugged:
        return "unplugged";
    case Stream::State::Failed:
        return "failed";
    case Stream::State::Stopped:
        return "stopped";
    }
    return "unknown";
}

py::dict countsOf(const StreamObject& self) {
    const Host::StreamCounts counts = self.stream().counts();
    return py::dict("received"_a = counts.received, "fetched"_a = counts.fetched,
                    "lost_by_device"_a = counts.lostByDevice, "dropped_by_queue"_a = counts.droppedByQueue,
                    "absences"_a = counts.absences, "missed"_a = counts.missed);
}

} // namespace

std::chrono::milliseconds millisecondsOf(double seconds) {
    constexpr double most = 1e9; // some thirty years
    if (!(seconds >= 0))
        throw py::value_error("a limit is 0 or more seconds, not " + std::to_string(seconds));
    return std::chrono::milliseconds(std::llround(std::min(seconds, most) * 1000));
}

StreamObject::StreamObject(Stream stream, std::optional<std::uint64_t> frames,
                           std::chrono::milliseconds patience)
    : held(std::move(stream)), left(frames), limit(patience) {
    endAtExit<Stream>(held.share(), [](Stream& still) { still.stop(); });
}

/// `frames` counts what was handed out: a wait that was interrupted, or has failed, takes none.
std::unique_ptr<FrameObject> StreamObject::next(std::optional<double> seconds, bool newest) {
    if (left && *left == 0) {
        stop();
        return nullptr;
    }
    const std::chrono::milliseconds patience = seconds ? millisecondsOf(*seconds) : limit;
    std::optional<Host::Frame> frame = waiting([&, stream = held.share()](const Host::GoOn& goOn) {
        return newest ? stream->latest(patience, goOn) : stream->next(patience, goOn);
    });
    tellNotes();
    if (!frame)
        return nullptr;
    if (left && *left > 0)
        --*left;
    return frameObject(std::move(*frame));
}

void StreamObject::start() const {
    interruptible([stream = held.share()] { stream->start(); });
}

void StreamObject::stop() const {
    if (!isLeftBehind())
        interruptible([stream = held.share()] { stream->stop(); });
}

void bindStream(StreamClass& bound) {
    bound.def("__iter__", [](const py::object& self) { return self; })
        .def("__next__",
             [](StreamObject& self) {
                 std::unique_ptr<FrameObject> frame = self.next({}, false);
                 if (!frame)
                     throw py::stop_iteration();
                 return frame;
             })
        .def(
            "next", [](StreamObject& self, std::optional<double> limit) { return self.next(limit, false); },
            "limit"_a = py::none(), "The next frame, in order; None at the end. The limit is in seconds.")
        .def(
            "latest", [](StreamObject& self, std::optional<double> limit) { return self.next(limit, true); },
            "limit"_a = py::none(), "The frame that came last; those before it are dropped.")
        .def("start", &StreamObject::start, "Begins a stream that was opened with started=False.")
        .def("stop", &StreamObject::stop, "Ends the stream, in 2 s at most; who waits for a frame is woken.")
        .def("__enter__", [](const py::object& self) { return self; })
        .def("__exit__", [](const StreamObject& self, const py::args&) { self.stop(); })
        .def_property_readonly("info", [](const StreamObject& self) { return self.stream().info(); })
        .def_property_readonly("label", [](const StreamObject& self) { return text(self.stream().label()); })
        .def_property_readonly("state",
                               [](const StreamObject& self) { return nameOf(self.stream().state()); })
        .def_property_readonly("counts", &countsOf, "What has come and what has not.")
        .def_property_readonly(
            "sharing", [](const StreamObject& self) { return text(self.stream().sharing()); },
            "Of a shared stream: whose frames they are, and whether others get them; else empty.")
        .def("__repr__", [](const StreamObject& self) {
            return text("<zentara.Stream " + self.stream().label() + ", " + nameOf(self.stream().state()) +
                        ">");
        });
}

} // namespace Zentara::Python
