#pragma once

#include <vector>

#include <gst/gst.h>
#include <zentara/host/frame.h>
#include <zentara/host/mode.h>

namespace Zentara::GStreamer {

/// What a pad of that kind can ever deliver; static.
[[nodiscard]] const char* templateCaps(Host::Kind kind) noexcept;

/// The caps of a mode; the caller's. Empty where GStreamer has none: sound of an odd number of bits.
[[nodiscard]] GstCaps* capsOf(const Host::Mode& mode);

/// Those of several modes, in their order; the caller's.
[[nodiscard]] GstCaps* capsOf(const std::vector<Host::Mode>& modes);

/// The frame's picture or sound, without a copy where rows lie as GStreamer expects them; of depth the plane of depths.
/// The buffer holds the frame; it is the caller's, and has no times yet.
/// \throws Host::Failure (Failed) for a frame that is too short for its mode
[[nodiscard]] GstBuffer* bufferOf(const Host::Frame& frame);

} // namespace Zentara::GStreamer
