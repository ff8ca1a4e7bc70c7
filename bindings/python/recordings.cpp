#include "bindings/python/recordings.h"

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <pybind11/stl.h>
#include <zentara/host/recording.h>

#include "bindings/python/cameras.h"
#include "bindings/python/frames.h"
#include "bindings/python/interpreter.h"
#include "bindings/python/values.h"

namespace Zentara::Python {
namespace {

using namespace pybind11::literals;
using Host::Recorder;
using Host::Recording;

using Writer = OwnFile<Recorder>;

/// Asks the recorder something, on a thread that Ctrl-C leaves behind: the file is whole or removed in the end.
template<typename Work>
void write(const Writer& self, Work work) {
    aside([recorder = self.share(), work = std::move(work)] { work(*recorder); });
}

/// A reader for several threads: one after the other.
class Reader final {
public:
    explicit Reader(const std::string& path)
        : held(aside([path] { return std::make_shared<Shared>(path); })) {}

    /// Reads on a thread that Ctrl-C leaves behind.
    template<typename Work>
    auto read(Work work) const {
        return aside([shared = held.share(), work = std::move(work)] {
            const std::lock_guard hold(shared->lock);
            return work(shared->file);
        });
    }
    /// For what never changes. Lives as long as this.
    [[nodiscard]] const Recording& recording() const { return held.share()->file; }

private:
    struct Shared {
        explicit Shared(const std::string& path) : file(path) {}
        std::mutex lock;
        Recording file; ///< guarded by `lock`, but for what never changes
    };
    OwnFile<Shared> held;
};

/// The end of a recording ends `for`; one that was cut short raises instead, behind its last whole frame.
py::object numbered(std::optional<Host::RecordedFrame> read) {
    if (!read)
        throw py::stop_iteration();
    return py::make_tuple(read->stream, frameObject(std::move(read->frame)));
}

} // namespace

void bindRecordings(py::module_& module) {
    py::class_<Writer>(
        module, "Recorder",
        "Writes streams into one recording, which takes its name at the end of a `with` block; an exception\n"
        "there removes it.")
        .def(py::init([](const PathText& path, const std::vector<Host::StreamInfo>& streams) {
                 return std::make_unique<Writer>(aside(
                     [path = path.name, streams] { return std::make_shared<Recorder>(path, streams); }));
             }),
             "path"_a, "streams"_a)
        .def(
            "add",
            [](const Writer& self, const FrameObject& frame, std::size_t stream) {
                write(self, [frame = frame.frame(), stream](Recorder& one) { one.add(stream, frame); });
            },
            "frame"_a, "stream"_a = 0, "Adds a frame of that stream.")
        .def("commit", [](const Writer& self) { write(self, [](Recorder& one) { one.commit(); }); })
        .def("__enter__", [](const py::object& self) { return self; })
        .def("__exit__",
             [](const Writer& self, const py::object& kind, const py::object&, const py::object&) {
                 write(self,
                       [isWhole = kind.is_none()](Recorder& one) { isWhole ? one.commit() : one.discard(); });
             });

    py::class_<Reader>(module, "Recording",
                       "What a Recorder wrote; `for` gives the stream's index and the frame, in order.")
        .def(py::init([](const PathText& path) { return std::make_unique<Reader>(path.name); }), "path"_a)
        .def_property_readonly("streams", [](const Reader& self) { return self.recording().streams(); })
        .def_property_readonly(
            "cameras", [](const Reader& self) { return self.recording().cameras(); },
            "The cameras whose streams it holds.")
        .def(
            "camera",
            [](const Reader& self, const std::string& name, double speed) {
                return std::make_unique<CameraObject>(
                    self.read([name, options = Host::PlayOptions{speed, notes()}](const Recording& one) {
                        return one.camera(name, options);
                    }));
            },
            "name"_a = "", py::kw_only(), "speed"_a = 1.0,
            "One of them, which plays at that multiple of the pace at which was recorded, and ends.")
        .def_property_readonly("version", [](const Reader& self) { return self.recording().version(); })
        .def("__iter__", [](const py::object& self) { return self; })
        .def(
            "__next__",
            [](const Reader& self) { return numbered(self.read([](Recording& one) { return one.next(); })); })
        .def(
            "rewind", [](const Reader& self) { self.read([](Recording& one) { one.rewind(); }); },
            "`for` begins again with the first frame.")
        .def(
            "count",
            [](const Reader& self, std::size_t stream) {
                return self.read([=](Recording& one) { return one.count(stream); });
            },
            "stream"_a = 0, "How many frames a stream has.")
        .def(
            "at",
            [](const Reader& self, std::uint64_t number, std::size_t stream) {
                return frameObject(self.read([=](Recording& one) { return one.at(stream, number); }));
            },
            "number"_a, "stream"_a = 0, "A frame by its number, from 0.")
        .def(
            "at_time",
            [](const Reader& self, std::int64_t micros, std::size_t stream) {
                return frameObject(self.read([=](Recording& one) { return one.atTime(stream, micros); }));
            },
            "micros"_a, "stream"_a = 0, "The frame whose time is nearest, on the device's clock.");
}

} // namespace Zentara::Python
