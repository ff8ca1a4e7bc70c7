#pragma once

#include <zentara/calibration_internal.h>

#include "host/json_fields.h"

namespace Zentara::Tool {

/// What of a calibration travels to and from a camera: phase delays and temperature compensation.
[[nodiscard]] Json toJson(const CalibrationInternal& calibration);

/// The reverse of toJson. Every field must be there, and no other. \throws Failure naming the field
[[nodiscard]] CalibrationInternal calibrationFromJson(JsonFields fields);

/// What a camera gets to see of a calibration, and what comes back when it is read: the marshalled form, read again.
/// \throws Failure when it does not survive that
[[nodiscard]] CalibrationInternal asMarshalled(const CalibrationInternal& calibration);

} // namespace Zentara::Tool
