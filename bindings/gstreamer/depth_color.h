#pragma once

#include <gst/gst.h>

namespace Zentara::GStreamer {

/// The type of `zentaracolor`: depth as 16-bit grey to RGB, in a range of millimetres that stays; no depth is black. What a
/// value stands for, the comment tag of the stream says.
[[nodiscard]] GType depthColorType();

} // namespace Zentara::GStreamer
