#pragma once

#include <pybind11/pybind11.h>
#include <zentara/host/failure.h>

#include <pybind11/pybind11.h>

namespace Zentara::Python {

/// Lets a Host::Failure arrive in Python as the exception of its code, with message, cause, remedy and details.
void bindFailures();

/// The failure as the exception of its kind.
[[nodiscard]] pybind11::object exceptionOf(const Host::Failure& failure);

} // namespace Zentara::Python
