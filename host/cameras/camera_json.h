#pragma once

#include <vector>

#include <zentara/acceleration_internal.h>
#include <zentara/camera_intrinsics.h>
#include <zentara/host/camera.h>

#include "host/json.h"

namespace Zentara::Host {

/// Who a camera is: serial, name, path and controller; null where that is not known.
[[nodiscard]] Json cameraJson(const CameraInfo& camera);

/// The numbers of a lens, by their names.
[[nodiscard]] Json lensJson(const CameraIntrinsics& lens);

/// x, y and z.
[[nodiscard]] Json vectorJson(const AccelerationInternal& acceleration);

/// Sensor, name and celsius of each.
[[nodiscard]] Json temperaturesJson(const std::vector<Temperature>& temperatures);

} // namespace Zentara::Host
