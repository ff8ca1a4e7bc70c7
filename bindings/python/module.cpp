#include "bindings/python/calibration.h"
#include "bindings/python/cameras.h"
#include "bindings/python/failures.h"
#include "bindings/python/flash.h"
#include "bindings/python/frame_sets.h"
#include "bindings/python/frames.h"
#include "bindings/python/interpreter.h"
#include "bindings/python/pictures.h"
#include "bindings/python/recordings.h"
#include "bindings/python/streams.h"
#include "bindings/python/values.h"
#include "bindings/python/watch.h"

namespace {

[[noreturn]] void* refuseToMake(std::size_t) {
    throw pybind11::type_error("the object was made by __new__ alone, without its constructor");
}

/// An object that `__new__` alone has made has no C++ part; at its first use, pybind11 would take memory for one, and
/// leave it as it is.
void requireConstructors(const pybind11::module_& module) {
    for (const auto& [name, member] : pybind11::cast<pybind11::dict>(module.attr("__dict__"))) {
        if (!PyType_Check(member.ptr()))
            continue;
        if (auto* const type = pybind11::detail::get_type_info(reinterpret_cast<PyTypeObject*>(member.ptr())))
            type->operator_new = &refuseToMake;
    }
}

} // namespace

PYBIND11_MODULE(_zentara, module) {
    using namespace Zentara::Python;

    module.doc() = "The compiled part of the package zentara.";
    // Classes say where users find them, and are made together, so that every signature can name them.
    const py::object ownName = module.attr("__name__");
    module.attr("__name__") = "zentara";
    LensClass lens(module, "Lens", "A camera's lens: from pixels to rays, from depth to points, and back.");
    PointCloudClass cloud(module, "PointCloud", "Points in metres: x to the right, y down, z forward.");
    CameraClass camera(module, "Camera",
                       "A camera that is plugged in. Close it, or use it in a `with` block.");
    StreamClass stream(module, "Stream",
                       "The frames of a camera, as they come; go through them with `for`.\n\n"
                       "Several threads may wait for frames while another one stops the stream.");
    FrameSetsClass sets(
        module, "FrameSets",
        "What several streams of one camera deliver at one time; go through them with `for`.");
    FrameClass frame(
        module, "Frame",
        "One picture of depth or colour, or one block of sound.\n\n"
        "Its arrays are read-only, share its memory and keep it: it outlives stream and camera.");
    bindInterpreter(module);
    bindFailures();
    bindValues(module);
    bindLens(lens);
    bindPointCloud(cloud);
    bindFrame(frame);
    bindStream(stream);
    bindCamera(camera);
    bindCalibration(camera);
    bindFrameSets(module, sets);
    bindFlash(module);
    bindCameras(module);
    bindWatch(module);
    bindRecordings(module);
    bindPictures(module);
    requireConstructors(module);
    module.attr("__name__") = ownName;
}
