#include "bindings/gstreamer/failure_messages.h"

#include <memory>

#include <zentara/host/visible_text.h>

namespace Zentara::GStreamer {

namespace {

using Host::Failure;

gint resourceError(Failure::Code code) {
    switch (code) {
    case Failure::NoDevice:
    case Failure::NoPlugin:
        return GST_RESOURCE_ERROR_NOT_FOUND;
    case Failure::Permission:
        return GST_RESOURCE_ERROR_NOT_AUTHORIZED;
    case Failure::Busy:
        return GST_RESOURCE_ERROR_BUSY;
    case Failure::Usage:
        return GST_RESOURCE_ERROR_SETTINGS;
    case Failure::None:
    case Failure::Failed:
    case Failure::TimedOut:
    case Failure::Verification:
    case Failure::Interrupted:
        break;
    }
    return GST_RESOURCE_ERROR_READ;
}

/// \param details empty for none
void post(GstElement* element, GstMessageType type, gint code, const std::string& text,
          const std::string& details) {
    gst_element_message_full(
        element, type, GST_RESOURCE_ERROR, code, g_strdup(Host::visibleText(text).c_str()),
        details.empty() ? nullptr : g_strdup(Host::visibleText(details).c_str()), "zentara", "", 0);
}

/// An element that others count on it being there no longer.
class WeakElement {
public:
    explicit WeakElement(GstElement* element) { g_weak_ref_init(&reference, element); }
    ~WeakElement() { g_weak_ref_clear(&reference); }
    WeakElement(const WeakElement&) = delete;
    WeakElement& operator=(const WeakElement&) = delete;

    void warn(const std::string& text) {
        if (gpointer element = g_weak_ref_get(&reference)) {
            postWarning(GST_ELEMENT(element), text);
            gst_object_unref(element);
        }
    }

private:
    GWeakRef reference;
};

} // namespace

void postError(GstElement* element, const Failure& failure) {
    post(element, GST_MESSAGE_ERROR, resourceError(failure.code()), failure.what(), failure.remedy());
}

void postWarning(GstElement* element, const std::string& text) {
    post(element, GST_MESSAGE_WARNING, GST_RESOURCE_ERROR_FAILED, text, {});
}

Host::Note notesOf(GstElement* element) {
    return [weak = std::make_shared<WeakElement>(element)](const std::string& text) { weak->warn(text); };
}

} // namespace Zentara::GStreamer
