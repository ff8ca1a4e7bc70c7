#pragma once

#include <string>

#include <gst/gst.h>
#include <zentara/host/failure.h>
#include <zentara/host/note.h>

namespace Zentara::GStreamer {

/// Posts it as an error of the element: what was attempted, on what, and the cause as the message, the remedy in the
/// details; of the domain of resources, its code after the failure's.
void postError(GstElement* element, const Host::Failure& failure);

/// Posts a warning of the element.
void postWarning(GstElement* element, const std::string& text);

/// Notes of the host library as warnings of the element while it lives.
[[nodiscard]] Host::Note notesOf(GstElement* element);

} // namespace Zentara::GStreamer
