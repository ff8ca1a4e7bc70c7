#pragma once

#include <gst/gst.h>

namespace Zentara::GStreamer {

/// The type of the provider of devices: each camera is one, which comes and goes with it and makes a `zentarasrc`.
[[nodiscard]] GType cameraDevicesType();

} // namespace Zentara::GStreamer
