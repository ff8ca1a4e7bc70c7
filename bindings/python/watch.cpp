#include "bindings/python/watch.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <utility>

#include <pybind11/stl.h>
#include <zentara/host/cameras.h>

#include "bindings/python/cameras.h"
#include "bindings/python/streams.h"
#include "bindings/python/values.h"

namespace Zentara::Python {
namespace {

using namespace pybind11::literals;
using Host::CameraEvent;

/// Arrivals and removals, for `for`. Several threads may wait: each event goes to one of them.
class Watch final {
public:
    Watch()
        : held(interruptible([] {
              auto made = std::make_shared<Shared>();
              made->cameras->watch();
              return made;
          })) {
        endAtExit<Shared>(held.share(), &end);
    }

    /// Nothing when none came within the limit, or it was closed. \param limit without one: until one comes
    [[nodiscard]] std::optional<CameraEvent> next(std::optional<std::chrono::milliseconds> limit) const {
        return reporting(py::none(), false, [limit, shared = held.share()](Errand& errand) {
            using Clock = std::chrono::steady_clock;
            const Clock::time_point began = Clock::now();
            std::optional<CameraEvent> event;
            // a slice at a time: the library's own wait hears neither close() nor Ctrl-C
            for (bool isLast = false; !event && !isLast && !shared->isClosed && errand.isWanted();) {
                const auto passed = std::chrono::floor<std::chrono::milliseconds>(Clock::now() - began);
                isLast = limit && *limit - passed <= slice;
                event = shared->cameras->next(isLast ? std::max(*limit - passed, 0 * slice) : slice);
            }
            return event;
        });
    }
    void close() const {
        if (!isLeftBehind())
            interruptible([shared = held.share()] { end(*shared); });
    }

private:
    struct Shared {
        const std::shared_ptr<Host::Cameras> cameras = newCameras();
        std::atomic<bool> isClosed{false};
    };
    static void end(Shared& shared) {
        shared.isClosed = true;
        shared.cameras->close();
    }

    Held<Shared> held;
};

const char* nameOf(CameraEvent::Type type) {
    return type == CameraEvent::Type::Arrived   ? "arrived"
           : type == CameraEvent::Type::Removed ? "removed"
                                                : "trouble";
}

} // namespace

void bindWatch(py::module_& module) {
    py::class_<CameraEvent>(module, "CameraEvent", "One of a camera's nodes came or went, or a bus was lost.")
        .def_property_readonly("type", [](const CameraEvent& event) { return nameOf(event.type); })
        .def_readonly("camera", &CameraEvent::camera, "Its kinds are the node's alone; empty for trouble.")
        .def_property_readonly(
            "message", [](const CameraEvent& event) { return text(event.message); }, "What the trouble is.")
        .def_readonly("time_micros", &CameraEvent::timeMicros, "When, by the host's monotonic clock.")
        .def("__repr__", [](const CameraEvent& event) {
            const std::string kind =
                event.camera.kinds.empty() ? "" : Host::kindName(event.camera.kinds.front());
            return text(std::string("<zentara.CameraEvent ") + nameOf(event.type) + " " + kind + " " +
                        event.camera.label() + event.message + ">");
        });
    py::class_<Watch>(module, "Watch",
                      "Cameras that come and go; `for` waits for each event, and ends with close().\n\n"
                      "It begins with the arrivals of what is there.")
        .def(py::init<>())
        .def("__iter__", [](const py::object& self) { return self; })
        .def("__next__",
             [](const Watch& self) {
                 std::optional<CameraEvent> event = self.next({});
                 if (!event)
                     throw py::stop_iteration();
                 return *event;
             })
        .def(
            "next", [](const Watch& self, double limit) { return self.next(millisecondsOf(limit)); },
            "limit"_a, "The next event; None when none came within so many seconds.")
        .def("close", &Watch::close)
        .def("__enter__", [](const py::object& self) { return self; })
        .def("__exit__", [](const Watch& self, const py::args&) { self.close(); });
}

} // namespace Zentara::Python
