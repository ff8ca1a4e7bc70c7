#pragma once

#include <gst/gst.h>

namespace Zentara::GStreamer {

/// The type of `zentarasrc`: a camera as a bin of live sources, one a pad. "depth" is always there; "color" and "audio"
/// are there on request.
[[nodiscard]] GType cameraSourceType();

} // namespace Zentara::GStreamer
