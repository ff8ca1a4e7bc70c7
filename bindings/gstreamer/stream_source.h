#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include <gst/base/gstpushsrc.h>
#include <zentara/host/mode.h>

#include "bindings/gstreamer/camera_session.h"
#include "bindings/gstreamer/errand.h"

namespace Zentara::GStreamer {

/// What happens when the camera is pulled out.
enum class OnUnplug {
    Error, ///< an error that ends the pipeline
    Eos,   ///< a warning, and the end of the stream
    Wait,  ///< a warning, and the stream goes on when the camera is back
};

/// What a stream is asked for.
struct StreamWish {
    Host::Kind kind = Host::Kind::Depth;
    std::string mode; ///< its name or text; empty for the first one that fits what is downstream
    OnUnplug onUnplug = OnUnplug::Error;
    std::chrono::milliseconds silence{5000}; ///< after which it fails; 0: never
    int frames = -1;                         ///< after which it ends; -1: never
};

/// The element inside `zentarasrc` that delivers one stream: live, in the pipeline's time.
/// \param pad where the stream leaves `zentarasrc`: while nothing is linked there, the camera's stream does not begin.
///        It must outlive the element's READY state
[[nodiscard]] GstElement* newStreamSource(Host::Kind kind);

/// Before READY becomes PAUSED. \param pad as above; kept without a count
void prepareStreamSource(GstElement* source, StreamWish wish, std::shared_ptr<CameraSession> session,
                         GstPad* pad);

/// What still ends of the stream after PAUSED became READY; nothing if nothing does.
[[nodiscard]] std::optional<Errand<bool>> endOfStreamSource(GstElement* source);

} // namespace Zentara::GStreamer
