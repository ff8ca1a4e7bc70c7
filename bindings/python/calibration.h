#pragma once

#include "bindings/python/cameras.h"

namespace Zentara::Python {

/// What a camera knows of its lenses and corrections, and the calibration that its parameter back-end holds.
void bindCalibration(CameraClass& bound);

} // namespace Zentara::Python
