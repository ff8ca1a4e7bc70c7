#pragma once

#include <pybind11/pybind11.h>

namespace Zentara::Python {

/// Lets a Host::Failure arrive in Python as the exception of its code, with message, cause, remedy and details.
void bindFailures();

} // namespace Zentara::Python
