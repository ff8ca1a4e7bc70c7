#pragma once

#include <zentara/camera_controls.h>
#include <zentara/power_line_frequency.h>

#include "plugins/v4l2/device_file.h"

namespace Zentara::V4l2 {

// The settings of a colour camera at its driver. All are called on the device's own thread.

/// What the camera has. Focus is in the driver's own steps where the camera has no millimetres.
[[nodiscard]] CameraControlRanges readRanges(const DeviceFile& file);

/// \throws Plugin::ArgumentPluginException for a setting that the camera doesn't have, or a value that it doesn't take
void writeSetting(const DeviceFile& file, CameraControlsEnum control, const CameraControlValue& value);

/// Those that the camera has; a setting that is as wanted is left alone.
void writeSettings(const DeviceFile& file, const CameraControls& controls);

/// What the driver begins with; DISABLED for a camera without the setting.
[[nodiscard]] PowerLineFrequency usualPowerLine(const DeviceFile& file);
/// Does nothing for a camera without the setting.
void writePowerLine(const DeviceFile& file, PowerLineFrequency frequency);

} // namespace Zentara::V4l2
