#include "bindings/gstreamer/camera_source.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "bindings/gstreamer/camera_session.h"
#include "bindings/gstreamer/errand.h"
#include "bindings/gstreamer/failure_messages.h"
#include "bindings/gstreamer/frame_buffers.h"
#include "bindings/gstreamer/stream_source.h"

namespace Zentara::GStreamer {

namespace {

using Host::Kind;
using std::chrono::milliseconds;

/// How long READY to PAUSED waits for the camera, so that caps and latency are known then; and back, until all has ended.
constexpr milliseconds patience(300);
constexpr std::array kinds{Kind::Depth, Kind::Color, Kind::Audio};

enum Property : guint {
    Property_CAMERA = 1,
    Property_RECORDING,
    Property_MODE,
    Property_COLOR_MODE,
    Property_AUDIO_MODE,
    Property_ON_UNPLUG,
    Property_TIMEOUT,
    Property_NUM_BUFFERS,
};

/// What the properties say; kept under the element's object lock.
struct Settings {
    CameraSession::Wanted camera;
    std::array<std::string, kinds.size()> modes; ///< by kind
    OnUnplug onUnplug = OnUnplug::Error;
    guint timeout = 5000;
    gint frames = -1;
};

/// One pad and what delivers there; both are the bin's.
struct Lane {
    Kind kind;
    GstElement* source;
    GstPad* pad;
};

} // namespace

} // namespace Zentara::GStreamer

using namespace Zentara::GStreamer;
using Zentara::Host::Kind;

struct ZentaraSrc {
    GstBin parent;
    Settings* settings;
    std::vector<Lane>* lanes;                ///< under the object lock
    std::shared_ptr<CameraSession>* session; ///< the same; null below PAUSED
};
struct ZentaraSrcClass {
    GstBinClass parent;
};

G_DEFINE_TYPE(ZentaraSrc, zentara_src, GST_TYPE_BIN)

namespace {

ZentaraSrc* sourceOf(gpointer element) { return static_cast<ZentaraSrc*>(element); }

GType onUnplugType() {
    static const std::array<GEnumValue, 4> values{
        {{static_cast<gint>(OnUnplug::Error), "an error ends the pipeline", "error"},
         {static_cast<gint>(OnUnplug::Eos), "a warning, then the stream ends", "eos"},
         {static_cast<gint>(OnUnplug::Wait), "a warning, and on when the camera is back", "wait"},
         {0, nullptr, nullptr}}};
    static const GType type = g_enum_register_static("ZentaraOnUnplug", values.data());
    return type;
}

// Properties ---------------------------------------------------------------------------------------------------------

std::string* textOf(Settings& settings, guint property) {
    switch (property) {
    case Property_CAMERA:
        return &settings.camera.camera;
    case Property_RECORDING:
        return &settings.camera.recording;
    case Property_MODE:
        return &settings.modes[static_cast<std::size_t>(Kind::Depth)];
    case Property_COLOR_MODE:
        return &settings.modes[static_cast<std::size_t>(Kind::Color)];
    case Property_AUDIO_MODE:
        return &settings.modes[static_cast<std::size_t>(Kind::Audio)];
    default:
        return nullptr;
    }
}

void setProperty(GObject* object, guint property, const GValue* value, GParamSpec* about) {
    GST_OBJECT_LOCK(object);
    Settings& settings = *sourceOf(object)->settings;
    bool isKnown = true;
    if (std::string* const text = textOf(settings, property)) {
        const gchar* const given = g_value_get_string(value);
        *text = given == nullptr ? "" : given;
    } else if (property == Property_ON_UNPLUG)
        settings.onUnplug = static_cast<OnUnplug>(g_value_get_enum(value));
    else if (property == Property_TIMEOUT)
        settings.timeout = g_value_get_uint(value);
    else if (property == Property_NUM_BUFFERS)
        settings.frames = g_value_get_int(value);
    else
        isKnown = false;
    GST_OBJECT_UNLOCK(object);
    if (!isKnown)
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, property, about);
}

void getProperty(GObject* object, guint property, GValue* value, GParamSpec* about) {
    GST_OBJECT_LOCK(object);
    Settings& settings = *sourceOf(object)->settings;
    bool isKnown = true;
    if (const std::string* const text = textOf(settings, property))
        g_value_set_string(value, text->empty() ? nullptr : text->c_str());
    else if (property == Property_ON_UNPLUG)
        g_value_set_enum(value, static_cast<gint>(settings.onUnplug));
    else if (property == Property_TIMEOUT)
        g_value_set_uint(value, settings.timeout);
    else if (property == Property_NUM_BUFFERS)
        g_value_set_int(value, settings.frames);
    else
        isKnown = false;
    GST_OBJECT_UNLOCK(object);
    if (!isKnown)
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, property, about);
}

// Pads ---------------------------------------------------------------------------------------------------------------

/// Where nobody takes the frames they are dropped, and the other pads go on.
GstFlowReturn pass(GstPad* inside, GstObject* parent, GstBuffer* buffer) {
    const GstFlowReturn came = gst_proxy_pad_chain_default(inside, parent, buffer);
    return came == GST_FLOW_NOT_LINKED ? GST_FLOW_OK : came;
}

void prepareLane(ZentaraSrc* self, const Lane& lane, const std::shared_ptr<CameraSession>& session) {
    GST_OBJECT_LOCK(self);
    const Settings& settings = *self->settings;
    StreamWish wish{lane.kind, settings.modes[static_cast<std::size_t>(lane.kind)], settings.onUnplug,
                    milliseconds(settings.timeout), settings.frames};
    GST_OBJECT_UNLOCK(self);
    prepareStreamSource(lane.source, std::move(wish), session, lane.pad);
}

GstPad* addLane(ZentaraSrc* self, Kind kind) {
    const char* const name = Zentara::Host::kindName(kind);
    GstElement* const source = newStreamSource(kind);
    gst_bin_add(GST_BIN(self), source);
    GstPad* const inner = gst_element_get_static_pad(source, "src");
    GstPadTemplate* const shape = gst_element_class_get_pad_template(GST_ELEMENT_GET_CLASS(self), name);
    GstPad* const pad = gst_ghost_pad_new_from_template(name, inner, shape);
    gst_object_unref(inner);
    GstProxyPad* const inside = gst_proxy_pad_get_internal(GST_PROXY_PAD(pad));
    gst_pad_set_chain_function(GST_PAD(inside), &pass);
    gst_object_unref(inside);

    const Lane lane{kind, source, pad};
    GST_OBJECT_LOCK(self);
    self->lanes->push_back(lane);
    const std::shared_ptr<CameraSession> session = *self->session;
    GST_OBJECT_UNLOCK(self);
    if (session)
        prepareLane(self, lane, session);
    gst_pad_set_active(pad, TRUE);
    gst_element_add_pad(GST_ELEMENT(self), pad);
    gst_element_sync_state_with_parent(source);
    return pad;
}

GstPad* requestPad(GstElement* element, GstPadTemplate* shape, const gchar* /*name*/,
                   const GstCaps* /*caps*/) {
    ZentaraSrc* const self = sourceOf(element);
    const std::string wanted = GST_PAD_TEMPLATE_NAME_TEMPLATE(shape);
    const auto kind = std::find_if(kinds.begin(), kinds.end(),
                                   [&wanted](Kind one) { return wanted == Zentara::Host::kindName(one); });
    GST_OBJECT_LOCK(self);
    const bool isThere = std::any_of(self->lanes->begin(), self->lanes->end(), [&](const Lane& lane) {
        return kind == kinds.end() || lane.kind == *kind;
    });
    GST_OBJECT_UNLOCK(self);
    return isThere ? nullptr : addLane(self, *kind);
}

void releasePad(GstElement* element, GstPad* pad) {
    ZentaraSrc* const self = sourceOf(element);
    GstElement* source = nullptr;
    GST_OBJECT_LOCK(self);
    const auto lane = std::find_if(self->lanes->begin(), self->lanes->end(),
                                   [pad](const Lane& one) { return one.pad == pad; });
    if (lane != self->lanes->end()) {
        source = lane->source;
        self->lanes->erase(lane);
    }
    GST_OBJECT_UNLOCK(self);
    if (source != nullptr) {
        gst_element_set_locked_state(source, TRUE);
        gst_element_set_state(source, GST_STATE_NULL);
        if (const auto end = endOfStreamSource(source))
            (void)end->isDone(patience);
    }
    gst_pad_set_active(pad, FALSE);
    gst_element_remove_pad(element, pad);
    if (source != nullptr)
        gst_bin_remove(GST_BIN(self), source);
}

// States -------------------------------------------------------------------------------------------------------------

std::vector<Lane> lanesOf(ZentaraSrc* self) {
    GST_OBJECT_LOCK(self);
    std::vector<Lane> all = *self->lanes;
    GST_OBJECT_UNLOCK(self);
    return all;
}

/// Most often the camera is open afterwards; whatever it does, the streams find out.
void open(ZentaraSrc* self) {
    GST_OBJECT_LOCK(self);
    const CameraSession::Wanted wanted = self->settings->camera;
    GST_OBJECT_UNLOCK(self);
    const auto session = std::make_shared<CameraSession>(wanted, notesOf(GST_ELEMENT(self)));
    GST_OBJECT_LOCK(self);
    *self->session = session;
    GST_OBJECT_UNLOCK(self);
    for (const Lane& lane : lanesOf(self))
        prepareLane(self, lane, session);
    const Errand<bool> opening([session] {
        try {
            (void)session->camera();
        } catch (const Zentara::Host::Failure&) {
            return false; // who streams gets it as well
        }
        return true;
    });
    (void)opening.isDone(patience);
}

/// All at once, for each may wait for a device; what takes longer is left behind.
void close(ZentaraSrc* self) {
    std::vector<Errand<bool>> ends;
    for (const Lane& lane : lanesOf(self)) {
        if (auto end = endOfStreamSource(lane.source))
            ends.push_back(std::move(*end));
    }
    GST_OBJECT_LOCK(self);
    std::shared_ptr<CameraSession> session = std::exchange(*self->session, nullptr);
    GST_OBJECT_UNLOCK(self);
    if (session)
        ends.push_back(letGo(std::move(session)));
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (const Errand<bool>& end : ends)
        (void)end.isDone(std::chrono::duration_cast<milliseconds>(
            std::max(deadline - std::chrono::steady_clock::now(), std::chrono::steady_clock::duration(0))));
}

GstStateChangeReturn changeState(GstElement* element, GstStateChange change) {
    ZentaraSrc* const self = sourceOf(element);
    if (change == GST_STATE_CHANGE_READY_TO_PAUSED)
        open(self);
    const GstStateChangeReturn came =
        GST_ELEMENT_CLASS(zentara_src_parent_class)->change_state(element, change);
    if (change == GST_STATE_CHANGE_PAUSED_TO_READY ||
        (change == GST_STATE_CHANGE_READY_TO_PAUSED && came == GST_STATE_CHANGE_FAILURE))
        close(self);
    return came;
}

/// A bin lets its elements go before its pads.
void disposeSource(GObject* object) {
    GST_OBJECT_LOCK(object);
    sourceOf(object)->lanes->clear();
    GST_OBJECT_UNLOCK(object);
    G_OBJECT_CLASS(zentara_src_parent_class)->dispose(object);
}

void finalizeSource(GObject* object) {
    ZentaraSrc* const self = sourceOf(object);
    delete self->settings;
    delete self->lanes;
    delete self->session;
    G_OBJECT_CLASS(zentara_src_parent_class)->finalize(object);
}

void addTemplate(GstElementClass* type, Kind kind, GstPadPresence presence) {
    GstCaps* const caps = gst_caps_from_string(templateCaps(kind));
    gst_element_class_add_pad_template(
        type, gst_pad_template_new(Zentara::Host::kindName(kind), GST_PAD_SRC, presence, caps));
    gst_caps_unref(caps);
}

} // namespace

static void zentara_src_class_init(ZentaraSrcClass* type) {
    GObjectClass* const object = G_OBJECT_CLASS(type);
    object->set_property = &setProperty;
    object->get_property = &getProperty;
    object->dispose = &disposeSource;
    object->finalize = &finalizeSource;
    constexpr auto flags =
        static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_READY);
    const auto addText = [object](guint property, const char* name, const char* nick, const char* about) {
        g_object_class_install_property(object, property,
                                        g_param_spec_string(name, nick, about, nullptr, flags));
    };
    addText(Property_CAMERA, "camera", "Camera",
            "Serial number, path, or a part of the name; the first camera unless set");
    addText(Property_RECORDING, "recording", "Recording", "A recording to play in place of a camera");
    addText(Property_MODE, "mode", "Mode of depth",
            "Name, \"320x240@60\" or \"320x240\"; the first one that fits downstream unless set");
    addText(Property_COLOR_MODE, "color-mode", "Mode of color", "The same, of the pad \"color\"");
    addText(Property_AUDIO_MODE, "audio-mode", "Mode of audio", "The name of a mode, of the pad \"audio\"");
    g_object_class_install_property(
        object, Property_ON_UNPLUG,
        g_param_spec_enum("on-unplug", "When unplugged", "What happens when the camera is pulled out",
                          onUnplugType(), static_cast<gint>(OnUnplug::Error), flags));
    g_object_class_install_property(
        object, Property_TIMEOUT,
        g_param_spec_uint("timeout", "Longest silence",
                          "Milliseconds without a frame after which it is an error; 0: never", 0, 3'600'000,
                          5000, flags));
    g_object_class_install_property(object, Property_NUM_BUFFERS,
                                    g_param_spec_int("num-buffers", "Frames",
                                                     "Frames after which each stream ends; -1: never", -1,
                                                     G_MAXINT, -1, flags));

    GstElementClass* const element = GST_ELEMENT_CLASS(type);
    addTemplate(element, Kind::Depth, GST_PAD_ALWAYS);
    addTemplate(element, Kind::Color, GST_PAD_REQUEST);
    addTemplate(element, Kind::Audio, GST_PAD_REQUEST);
    gst_element_class_set_static_metadata(
        element, "Depth camera", "Source/Video/Audio",
        "Depth, color and sound of a camera: depth as 16-bit grey, its unit and lens in a comment tag",
        "Zentara");
    element->change_state = &changeState;
    element->request_new_pad = &requestPad;
    element->release_pad = &releasePad;
}

static void zentara_src_init(ZentaraSrc* self) {
    self->settings = new Settings;
    self->lanes = new std::vector<Lane>;
    self->session = new std::shared_ptr<CameraSession>;
    GST_OBJECT_FLAG_SET(self, GST_ELEMENT_FLAG_SOURCE);
    addLane(self, Kind::Depth);
}

namespace Zentara::GStreamer {

GType cameraSourceType() { return zentara_src_get_type(); }

} // namespace Zentara::GStreamer
