#pragma once

#include <pybind11/pybind11.h>

namespace Zentara::Python {

/// What tells of cameras that come and go.
void bindWatch(pybind11::module_& module);

} // namespace Zentara::Python
