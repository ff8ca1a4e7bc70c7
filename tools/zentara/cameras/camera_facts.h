#pragma once

#include <vector>

#include <zentara/host/camera.h>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

// What is told of a camera, as JSON: numbers in the units that docs/json.md names.

[[nodiscard]] Json toJson(const HardwareVersionInternal& hardware);
[[nodiscard]] Json toJson(const std::vector<CameraIntrinsics>& lenses);
[[nodiscard]] Json
toJson(const std::vector<ExtrinsicParametersInternal>& list); ///< rotation row by row; millimetres
[[nodiscard]] Json toJson(const AccelerationInternal& acceleration);
[[nodiscard]] Json toJson(const Host::NodeDescription& described);
[[nodiscard]] Json toJson(const Host::Corrections& corrections);

} // namespace Zentara::Tool
