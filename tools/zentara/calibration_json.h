#pragma once

#include <string>

#include <zentara/calibration_internal.h>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// What of a calibration travels to and from a camera: phase delays and temperature compensation.
[[nodiscard]] Json toJson(const CalibrationInternal& calibration);

/// The reverse of toJson. Every field must be there, and no other.
/// \param source names the JSON in messages \throws ToolFailure naming the field
[[nodiscard]] CalibrationInternal calibrationFromJson(const Json& json, const std::string& source);

/// What a camera gets to see of a calibration, and what comes back when it is read: the marshalled form, read again.
/// \throws ToolFailure when it does not survive that
[[nodiscard]] CalibrationInternal asMarshalled(const CalibrationInternal& calibration);

/// Parses a file as JSON. \throws ToolFailure naming the file, and the place of what is wrong
[[nodiscard]] Json readJsonFile(const std::string& path);

/// Writes a file whole or not at all. \throws ToolFailure
void writeJsonFile(const std::string& path, const Json& json);

} // namespace Zentara::Tool
