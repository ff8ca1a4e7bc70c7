#pragma once

#include <pybind11/pybind11.h>

namespace Zentara::Python {

/// Recorder and Recording.
void bindRecordings(pybind11::module_& module);

} // namespace Zentara::Python
