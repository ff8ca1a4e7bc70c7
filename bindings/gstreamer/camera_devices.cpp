#include "bindings/gstreamer/camera_devices.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <zentara/host/cameras.h>
#include <zentara/host/failure.h>
#include <zentara/host/visible_text.h>

#include "bindings/gstreamer/errand.h"
#include "bindings/gstreamer/frame_buffers.h"

struct ZentaraDevice {
    GstDevice parent;
    std::string* camera; ///< what `zentarasrc` is to open
};
struct ZentaraDeviceClass {
    GstDeviceClass parent;
};
G_DEFINE_TYPE(ZentaraDevice, zentara_device, GST_TYPE_DEVICE)

namespace Zentara::GStreamer {

namespace {

using Host::CameraInfo;
using Host::Cameras;
using Host::Kind;
using std::chrono::milliseconds;

constexpr milliseconds patience(300);    ///< of who ends the watch
constexpr milliseconds callLimit(3000);  ///< of the bus
constexpr milliseconds settlePause(100); ///< a camera comes node by node
constexpr milliseconds lookPause(100);
constexpr const char* name = "zentara";

GST_DEBUG_CATEGORY_STATIC(category);

Cameras::Options options() {
    Cameras::Options chosen;
    chosen.limit = callLimit;
    chosen.note = [](const std::string& text) { GST_CAT_WARNING(category, "%s", text.c_str()); };
    return chosen;
}

GstCaps* capsOf(Cameras& cameras, const CameraInfo& info) {
    GstCaps* all = gst_caps_new_empty();
    try {
        const Host::Camera camera = cameras.open(info);
        for (const Kind kind : info.kinds)
            all = gst_caps_merge(all, GStreamer::capsOf(camera.modes(kind)));
    } catch (const Host::Failure& failure) { // it is there nevertheless
        GST_CAT_WARNING(category, "%s", failure.what());
    }
    return all;
}

GstDevice* deviceOf(Cameras& cameras, const CameraInfo& info) {
    std::string kinds;
    for (const Kind kind : info.kinds)
        kinds += (kinds.empty() ? "" : " ") + std::string(Host::kindName(kind));
    const auto shown = [](const std::string& text) { return Host::visibleText(text); };
    GstStructure* const about = gst_structure_new(
        "zentara-camera", "device.api", G_TYPE_STRING, name, "device.serial", G_TYPE_STRING,
        shown(info.serial).c_str(), "device.vendor.name", G_TYPE_STRING, shown(info.vendor).c_str(),
        "device.product.name", G_TYPE_STRING, shown(info.product).c_str(), "device.path", G_TYPE_STRING,
        shown(info.path).c_str(), "controller", G_TYPE_STRING, shown(info.controller).c_str(), "pads",
        G_TYPE_STRING, kinds.c_str(), nullptr);
    GstCaps* const caps = capsOf(cameras, info);
    const std::string title = shown(info.name) + (info.serial.empty() ? "" : " " + shown(info.serial));
    const gpointer made = g_object_new(zentara_device_get_type(), "display-name", title.c_str(), "caps", caps,
                                       "device-class", "Source/Video", "properties", about, nullptr);
    gst_caps_unref(caps);
    gst_structure_free(about);
    *static_cast<ZentaraDevice*>(made)->camera = info.serial.empty() ? info.path : info.serial;
    return GST_DEVICE(made);
}

/// The cameras that there are; none where they cannot be had.
std::vector<CameraInfo> list(Cameras& cameras) {
    try {
        return cameras.list();
    } catch (const Host::Failure& failure) {
        GST_CAT_WARNING(category, "%s", failure.what());
        return {};
    }
}

/// What a provider has told of, kept up to date. Separate.
class DeviceList {
public:
    /// \param owner is held for as long as the list
    explicit DeviceList(GstDeviceProvider* owner)
        : provider(static_cast<GstDeviceProvider*>(gst_object_ref(owner))), cameras(options()) {}
    ~DeviceList() {
        for (const auto& [info, device] : known)
            gst_object_unref(device);
        gst_object_unref(provider);
    }
    DeviceList(const DeviceList&) = delete;
    DeviceList& operator=(const DeviceList&) = delete;

    void update() {
        const std::vector<CameraInfo> now = list(cameras);
        for (std::size_t index = known.size(); index-- > 0;) {
            if (std::find(now.begin(), now.end(), known[index].first) != now.end())
                continue;
            gst_device_provider_device_remove(provider, known[index].second);
            gst_object_unref(known[index].second);
            known.erase(known.begin() + static_cast<std::ptrdiff_t>(index));
        }
        for (const CameraInfo& info : now) {
            if (std::none_of(known.begin(), known.end(),
                             [&info](const auto& one) { return one.first == info; })) {
                auto* const device = static_cast<GstDevice*>(gst_object_ref_sink(deviceOf(cameras, info)));
                known.emplace_back(info, device);
                gst_device_provider_device_add(provider, device);
            }
        }
    }

    /// \return when that is set
    void watch(const std::atomic<bool>& isOver) try {
        cameras.watch();
        while (!isOver) {
            if (!cameras.next(lookPause))
                continue;
            while (!isOver && cameras.next(settlePause))
                ;
            if (!isOver)
                update();
        }
    } catch (const Host::Failure& failure) {
        GST_CAT_WARNING(category, "cameras are watched no more: %s", failure.what());
    }

private:
    GstDeviceProvider* const provider;
    Cameras cameras;
    std::vector<std::pair<CameraInfo, GstDevice*>> known; ///< each device is counted here
};

/// A watch that goes on.
struct Watch {
    std::shared_ptr<std::atomic<bool>> isOver = std::make_shared<std::atomic<bool>>(false);
    Errand<bool> errand;
};

} // namespace

} // namespace Zentara::GStreamer

using namespace Zentara::GStreamer;

// A device -----------------------------------------------------------------------------------------------------------

namespace {

GstElement* createElement(GstDevice* device, const gchar* called) {
    GstElement* const made = gst_element_factory_make("zentarasrc", called);
    if (made != nullptr)
        g_object_set(made, "camera",
                     static_cast<ZentaraDevice*>(static_cast<gpointer>(device))->camera->c_str(), nullptr);
    return made;
}

void finalizeDevice(GObject* object) {
    delete static_cast<ZentaraDevice*>(static_cast<gpointer>(object))->camera;
    G_OBJECT_CLASS(zentara_device_parent_class)->finalize(object);
}

} // namespace

static void zentara_device_class_init(ZentaraDeviceClass* type) {
    GST_DEVICE_CLASS(type)->create_element = &createElement;
    G_OBJECT_CLASS(type)->finalize = &finalizeDevice;
}

static void zentara_device_init(ZentaraDevice* self) { self->camera = new std::string; }

// The provider -------------------------------------------------------------------------------------------------------

struct ZentaraDeviceProvider {
    GstDeviceProvider parent;
    std::optional<Watch>* watch;
};
struct ZentaraDeviceProviderClass {
    GstDeviceProviderClass parent;
};
G_DEFINE_TYPE(ZentaraDeviceProvider, zentara_device_provider, GST_TYPE_DEVICE_PROVIDER)

namespace {

std::optional<Watch>& watchOf(gpointer provider) {
    return *static_cast<ZentaraDeviceProvider*>(provider)->watch;
}

GList* probe(GstDeviceProvider* /*provider*/) {
    GList* all = nullptr;
    Cameras cameras(options());
    for (const CameraInfo& info : list(cameras))
        all = g_list_append(all, gst_object_ref_sink(deviceOf(cameras, info)));
    return all;
}

/// What is there is told before this returns.
gboolean startWatch(GstDeviceProvider* provider) {
    auto devices = std::make_shared<DeviceList>(provider);
    devices->update();
    const auto isOver = std::make_shared<std::atomic<bool>>(false);
    watchOf(provider).emplace(Watch{isOver, Errand<bool>([devices, isOver]() mutable {
                                        devices->watch(*isOver);
                                        devices.reset();
                                        return true;
                                    })});
    return TRUE;
}

void stopWatch(GstDeviceProvider* provider) {
    std::optional<Watch>& watch = watchOf(provider);
    if (!watch)
        return;
    *watch->isOver = true;
    (void)watch->errand.isDone(patience);
    watch.reset();
}

void finalizeProvider(GObject* object) {
    delete static_cast<ZentaraDeviceProvider*>(static_cast<gpointer>(object))->watch;
    G_OBJECT_CLASS(zentara_device_provider_parent_class)->finalize(object);
}

} // namespace

static void zentara_device_provider_class_init(ZentaraDeviceProviderClass* type) {
    GST_DEBUG_CATEGORY_INIT(category, name, 0, "depth cameras");
    G_OBJECT_CLASS(type)->finalize = &finalizeProvider;
    GstDeviceProviderClass* const provider = GST_DEVICE_PROVIDER_CLASS(type);
    provider->probe = &probe;
    provider->start = &startWatch;
    provider->stop = &stopWatch;
    gst_device_provider_class_set_static_metadata(provider, "Depth cameras", "Source/Video",
                                                  "Lists the cameras that are plugged in", "Zentara");
}

static void zentara_device_provider_init(ZentaraDeviceProvider* self) {
    self->watch = new std::optional<Watch>;
}

namespace Zentara::GStreamer {

GType cameraDevicesType() { return zentara_device_provider_get_type(); }

} // namespace Zentara::GStreamer
