#pragma once

#include <zentara/calibration_internal.h>

#include "host/json_place.h"

namespace Zentara::Host {

/// What of a calibration travels to and from a camera: phase delays and temperature compensation.
[[nodiscard]] Json calibrationJson(const CalibrationInternal& calibration);

/// The reverse. Every field must be there, and no other. \throws JsonError
[[nodiscard]] CalibrationInternal calibrationFromJson(const JsonPlace& place);

} // namespace Zentara::Host
