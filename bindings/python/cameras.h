#pragma once

#include <pybind11/pybind11.h>
#include <zentara/host/cameras.h>

#include "bindings/python/interpreter.h"

namespace Zentara::Python {

/// A camera that Python holds.
class CameraObject final {
public:
    explicit CameraObject(Host::Camera camera);

    /// Asks the camera something, on a thread that Ctrl-C leaves behind. \param work takes the camera
    template<typename Work>
    auto ask(Work work) const {
        return interruptible([camera = held.share(), work = std::move(work)] { return work(*camera); });
    }
    /// The same for what must not be left half done: Ctrl-C comes through once it has ended.
    template<typename Work>
    auto finish(Work work) const {
        return reporting(py::none(), true,
                         [camera = held.share(), work = std::move(work)](Errand&) { return work(*camera); });
    }
    [[nodiscard]] const Host::Camera& camera() const noexcept { return held.get(); }

private:
    Held<Host::Camera> held;
};

using CameraClass = py::class_<CameraObject>;

void bindCamera(CameraClass& bound);

/// What finds cameras; its notes go to the logger.
[[nodiscard]] std::shared_ptr<Host::Cameras> newCameras();

/// What finds and opens cameras.
void bindCameras(py::module_& module);

} // namespace Zentara::Python
