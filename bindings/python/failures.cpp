#include "bindings/python/failures.h"

#include <exception>

#include <zentara/host/failure.h>

#include "bindings/python/values.h"

namespace Zentara::Python {

namespace py = pybind11;

namespace {

void raise(const Host::Failure& failure) {
    const py::object exception = exceptionOf(failure);
    PyErr_SetObject(py::type::handle_of(exception).ptr(), exception.ptr());
}

} // namespace

py::object exceptionOf(const Host::Failure& failure) {
    return py::module_::import("zentara._failures")
        .attr("failure_of")(static_cast<int>(failure.code()), text(failure.message()), text(failure.cause()),
                            text(failure.remedy()), textsOf(failure.details()));
}

void bindFailures() {
    py::register_local_exception_translator([](std::exception_ptr thrown) {
        try {
            if (thrown)
                std::rethrow_exception(thrown);
        } catch (const Host::Failure& failure) {
            try {
                raise(failure);
            } catch (py::error_already_set& instead) { // Ctrl-C, just now: it must not get lost
                instead.restore();
            }
        }
    });
}

} // namespace Zentara::Python
