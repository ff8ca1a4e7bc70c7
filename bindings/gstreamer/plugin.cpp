// The GStreamer plug-in: what it registers.
#include <string>

#include <gst/gst.h>
#include <zentara/host/own_root.h>

#include "bindings/gstreamer/camera_devices.h"
#include "bindings/gstreamer/camera_source.h"
#include "bindings/gstreamer/depth_color.h"

namespace {

/// In a build tree, and below a prefix that nothing tells of, the camera plug-ins lie at a known place.
void findRoot(GstPlugin* plugin) {
    const gchar* const file = gst_plugin_get_filename(plugin);
    if (file == nullptr)
        return;
    std::string root = file;
    for (int level = 0; level < 4;
         ++level) { // LIB/gstreamer-1.0/FILE, where LIB is one or two below the root
        root.resize(root.find_last_of('/') == std::string::npos ? 0 : root.find_last_of('/'));
        if (level >= 2 && !root.empty() && Zentara::Host::useRootIfNone(root))
            return;
    }
}

gboolean begin(GstPlugin* plugin) {
    findRoot(plugin);
    using namespace Zentara::GStreamer;
    return gst_element_register(plugin, "zentarasrc", GST_RANK_NONE, cameraSourceType()) != FALSE &&
           gst_element_register(plugin, "zentaracolor", GST_RANK_NONE, depthColorType()) != FALSE &&
           gst_device_provider_register(plugin, "zentaradeviceprovider", GST_RANK_PRIMARY,
                                        cameraDevicesType()) != FALSE;
}

} // namespace

#define PACKAGE "zentara"
GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, zentara,
                  "Depth cameras: their depth, color and sound", begin, ZENTARA_HOST_VERSION, "BSD",
                  "Zentara", "https://localhost/")
