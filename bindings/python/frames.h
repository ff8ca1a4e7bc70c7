#pragma once

#include <memory>

#include <pybind11/pybind11.h>
#include <zentara/host/frame.h>

#include "bindings/python/interpreter.h"

namespace Zentara::Python {

/// A frame that Python holds, and the arrays that were made of it.
class FrameObject final {
public:
    explicit FrameObject(Host::Frame value) : held(std::move(value)) {}

    [[nodiscard]] const Host::Frame& frame() const noexcept { return held.get(); }

    py::object metres;
    py::object millimetres;
    py::object rgb;

private:
    Held<Host::Frame> held;
};

using FrameClass = py::class_<FrameObject>;

[[nodiscard]] inline std::unique_ptr<FrameObject> frameObject(Host::Frame frame) {
    return std::make_unique<FrameObject>(std::move(frame));
}

void bindFrame(FrameClass& frame);

} // namespace Zentara::Python
