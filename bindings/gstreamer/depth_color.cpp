#include "bindings/gstreamer/depth_color.h"

#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include <gst/video/gstvideofilter.h>
#include <gst/video/video.h>
#include <zentara/host/color_map.h>
#include <zentara/host/failure.h>
#include <zentara/host/stream_line.h>

#include "bindings/gstreamer/failure_messages.h"

namespace Zentara::GStreamer {

namespace {

using Host::Color;
using Host::ColorMap;
using Host::Failure;

constexpr std::size_t depthValues = 65536;
constexpr double nearest = 200;   ///< millimetres, unless set
constexpr double farthest = 5000; ///< the same
constexpr double mostMillimetres = 1e6;

/// From depth values to colours. Under the element's object lock.
class ColorTable {
public:
    double near = nearest;
    double far = farthest;

    void change() { colors.clear(); }

    /// Takes the unit from what belongs to the stream; another comment is none of ours.
    void read(const char* comment) try {
        const Host::StreamInfo info = Host::readStreamLine(comment);
        if (info.mode.kind != Host::Kind::Depth)
            return;
        unit = info.millimetresPerUnit;
        isUnitKnown = true;
        colors.clear();
    } catch (const Failure&) {
        return;
    }

    /// \throws Failure (Usage) for a range that is none
    [[nodiscard]] const Color* get() {
        if (!colors.empty())
            return colors.data();
        const ColorMap map({near, far}, "mm", "no depth");
        colors.resize(depthValues);
        colors[0] = map(std::numeric_limits<double>::quiet_NaN());
        for (std::size_t value = 1; value < depthValues; ++value)
            colors[value] = map(static_cast<double>(value) * unit);
        return colors.data();
    }

    /// Whether it is to be told that nobody has said what a value stands for; true once.
    [[nodiscard]] bool isToBeTold() { return !isUnitKnown && !std::exchange(isTold, true); }

    void forget() {
        unit = 1;
        isUnitKnown = isTold = false;
        colors.clear();
    }

private:
    float unit = 1; ///< millimetres of a value
    bool isUnitKnown = false;
    bool isTold = false;
    std::vector<Color> colors; ///< of each value; empty when it is to be made
};

} // namespace

} // namespace Zentara::GStreamer

using namespace Zentara::GStreamer;

struct ZentaraColor {
    GstVideoFilter parent;
    ColorTable* table;
};
struct ZentaraColorClass {
    GstVideoFilterClass parent;
};

G_DEFINE_TYPE(ZentaraColor, zentara_color, GST_TYPE_VIDEO_FILTER)

namespace {

enum Property : guint { Property_NEAR = 1, Property_FAR };

ZentaraColor* colorOf(gpointer element) { return static_cast<ZentaraColor*>(element); }

void setColorProperty(GObject* object, guint property, const GValue* value, GParamSpec* /*about*/) {
    GST_OBJECT_LOCK(object);
    ColorTable& table = *colorOf(object)->table;
    (property == Property_NEAR ? table.near : table.far) = g_value_get_double(value);
    table.change();
    GST_OBJECT_UNLOCK(object);
}

void getColorProperty(GObject* object, guint property, GValue* value, GParamSpec* /*about*/) {
    GST_OBJECT_LOCK(object);
    const ColorTable& table = *colorOf(object)->table;
    g_value_set_double(value, property == Property_NEAR ? table.near : table.far);
    GST_OBJECT_UNLOCK(object);
}

/// The same picture in the other format.
GstCaps* transformCaps(GstBaseTransform* filter, GstPadDirection direction, GstCaps* caps, GstCaps* wanted) {
    GstPad* const other = direction == GST_PAD_SINK ? filter->srcpad : filter->sinkpad;
    GstCaps* const shape = gst_pad_get_pad_template_caps(other);
    GstCaps* bare = gst_caps_copy(caps);
    for (guint index = 0; index < gst_caps_get_size(bare); ++index)
        gst_structure_remove_fields(gst_caps_get_structure(bare, index), "format", "colorimetry",
                                    "chroma-site", nullptr);
    GstCaps* all = gst_caps_intersect_full(bare, shape, GST_CAPS_INTERSECT_FIRST);
    gst_caps_unref(bare);
    gst_caps_unref(shape);
    if (wanted != nullptr) {
        GstCaps* const some = gst_caps_intersect_full(wanted, all, GST_CAPS_INTERSECT_FIRST);
        gst_caps_unref(all);
        all = some;
    }
    return all;
}

gboolean sinkEvent(GstBaseTransform* filter, GstEvent* event) {
    if (GST_EVENT_TYPE(event) == GST_EVENT_TAG) {
        GstTagList* tags = nullptr;
        gst_event_parse_tag(event, &tags);
        const gchar* comment = nullptr;
        for (guint index = 0; gst_tag_list_peek_string_index(tags, GST_TAG_COMMENT, index, &comment) != FALSE;
             ++index) {
            GST_OBJECT_LOCK(filter);
            colorOf(filter)->table->read(comment);
            GST_OBJECT_UNLOCK(filter);
        }
    }
    return GST_BASE_TRANSFORM_CLASS(zentara_color_parent_class)->sink_event(filter, event);
}

gboolean stopColor(GstBaseTransform* filter) {
    GST_OBJECT_LOCK(filter);
    colorOf(filter)->table->forget();
    GST_OBJECT_UNLOCK(filter);
    return TRUE;
}

void paint(const GstVideoFrame& depth, const GstVideoFrame& picture, const Zentara::Host::Color* colors) {
    const auto* from = static_cast<const guint8*>(GST_VIDEO_FRAME_PLANE_DATA(&depth, 0));
    auto* to = static_cast<guint8*>(GST_VIDEO_FRAME_PLANE_DATA(&picture, 0));
    for (gint row = 0; row < GST_VIDEO_FRAME_HEIGHT(&depth); ++row) {
        for (gint column = 0; column < GST_VIDEO_FRAME_WIDTH(&depth); ++column) {
            const Zentara::Host::Color color = colors[GST_READ_UINT16_LE(from + 2 * column)];
            to[3 * column] = color.red;
            to[3 * column + 1] = color.green;
            to[3 * column + 2] = color.blue;
        }
        from += GST_VIDEO_FRAME_PLANE_STRIDE(&depth, 0);
        to += GST_VIDEO_FRAME_PLANE_STRIDE(&picture, 0);
    }
}

GstFlowReturn transformFrame(GstVideoFilter* filter, GstVideoFrame* depth, GstVideoFrame* picture) {
    std::optional<Zentara::Host::Failure> failure;
    bool isToBeTold = false;
    GST_OBJECT_LOCK(filter);
    try {
        ColorTable& table = *colorOf(filter)->table;
        paint(*depth, *picture, table.get());
        isToBeTold = table.isToBeTold();
    } catch (const Zentara::Host::Failure& why) {
        failure = why;
    }
    GST_OBJECT_UNLOCK(filter);
    if (isToBeTold)
        postWarning(GST_ELEMENT(filter),
                    "the stream does not say what a depth value stands for: it is taken for a "
                    "millimetre");
    if (failure)
        postError(GST_ELEMENT(filter), *failure);
    return failure ? GST_FLOW_ERROR : GST_FLOW_OK;
}

void finalizeColor(GObject* object) {
    delete colorOf(object)->table;
    G_OBJECT_CLASS(zentara_color_parent_class)->finalize(object);
}

void addColorPad(GstElementClass* type, const char* name, GstPadDirection direction, const char* shape) {
    GstCaps* const caps = gst_caps_from_string(shape);
    gst_element_class_add_pad_template(type, gst_pad_template_new(name, direction, GST_PAD_ALWAYS, caps));
    gst_caps_unref(caps);
}

} // namespace

static void zentara_color_class_init(ZentaraColorClass* type) {
    GObjectClass* const object = G_OBJECT_CLASS(type);
    object->set_property = &setColorProperty;
    object->get_property = &getColorProperty;
    object->finalize = &finalizeColor;
    constexpr auto flags = static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS |
                                                    GST_PARAM_CONTROLLABLE | GST_PARAM_MUTABLE_PLAYING);
    g_object_class_install_property(object, Property_NEAR,
                                    g_param_spec_double("near", "Near end",
                                                        "Millimetres that are red, as is what is nearer", 0,
                                                        mostMillimetres, nearest, flags));
    g_object_class_install_property(object, Property_FAR,
                                    g_param_spec_double("far", "Far end",
                                                        "Millimetres that are blue, as is what is farther", 0,
                                                        mostMillimetres, farthest, flags));

    GstElementClass* const element = GST_ELEMENT_CLASS(type);
    addColorPad(element, "sink", GST_PAD_SINK, GST_VIDEO_CAPS_MAKE("GRAY16_LE"));
    addColorPad(element, "src", GST_PAD_SRC, GST_VIDEO_CAPS_MAKE("RGB"));
    gst_element_class_set_static_metadata(
        element, "Colors of depth", "Filter/Converter/Video",
        "Depth to colors: red is near, blue is far, in a fixed range; black is no depth", "Zentara");
    GST_VIDEO_FILTER_CLASS(type)->transform_frame = &transformFrame;
    GstBaseTransformClass* const base = GST_BASE_TRANSFORM_CLASS(type);
    base->transform_caps = &transformCaps;
    base->sink_event = &sinkEvent;
    base->stop = &stopColor;
}

static void zentara_color_init(ZentaraColor* self) { self->table = new ColorTable; }

namespace Zentara::GStreamer {

GType depthColorType() { return zentara_color_get_type(); }

} // namespace Zentara::GStreamer
