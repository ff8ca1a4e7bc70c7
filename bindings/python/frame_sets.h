#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include <pybind11/pybind11.h>
#include <zentara/host/camera.h>
#include <zentara/host/frame_set.h>

#include "bindings/python/interpreter.h"

namespace Zentara::Python {

/// What several streams of one camera deliver at one time, for `for`. Several threads may wait, one after the other.
class FrameSetsObject final {
public:
    FrameSetsObject(Host::FrameSets sets, std::chrono::milliseconds patience);

    /// Nothing at the end.
    [[nodiscard]] std::optional<Host::FrameSet> next(std::optional<double> limit) const;
    void stop() const;

private:
    struct Shared {
        explicit Shared(Host::FrameSets made) : sets(std::move(made)) {}
        std::timed_mutex lock; ///< of the one who waits
        Host::FrameSets sets;
    };
    Held<Shared> held;
    const std::chrono::milliseconds limit;
};

/// One set of frames that Python holds.
struct FrameSetObject {
    explicit FrameSetObject(Host::FrameSet given);

    const Host::FrameSet set;
    py::object depth; ///< a Frame, or None
    py::object color;
    py::tuple audio; ///< of Frames
};

using FrameSetsClass = py::class_<FrameSetsObject>;

void bindFrameSets(py::module_& module, FrameSetsClass& bound);

} // namespace Zentara::Python
