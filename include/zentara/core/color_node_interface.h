#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <zentara/camera_controls.h>
#include <zentara/core/impl_type.h>
#include <zentara/core/plugin.h>
#include <zentara/export.h>
#include <zentara/guid.h>
#include <zentara/read_buffer_status.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara {
class ColorConfiguration;
class ColorProcessorData;
struct NodeEvent;
} // namespace Zentara

namespace Zentara::IO {
class VideoDeviceProxy;
}

namespace Zentara::Core {

class DescriptorStoreRO;

/// What a colour-node plug-in implements: one colour stream of one camera. This class owns the link to the
/// node's device, whose traffic all goes through the device proxy's worker thread.
///
/// Used in this order: `initialize`, any other operation, `dispose`. Separate, but `readBuffer` may run
/// beside the operations between these two; it must have returned before `dispose`.
///
///              initialize             enableStreaming
///     Made -----------------> Ready ------------------> Streaming
///      ^                        |  ^                        |
///      +------- dispose --------+  +--- disableStreaming ---+
///
/// This class itself knows Made and Ready alone; that a stream runs, and what is refused meanwhile, is the node's
/// affair. A camera that is pulled out changes nothing of it: `readBuffer` says so, and the host goes back the same way.
///
/// The order of the virtual operations is the boundary to nodes that are built separately.
class ZENTARA_API ColorNodeInterface : public Plugin {
public:
    explicit ColorNodeInterface(GUID guid);
    ColorNodeInterface(const ColorNodeInterface&) = delete;
    ColorNodeInterface& operator=(const ColorNodeInterface&) = delete;
    ~ColorNodeInterface() override;

    /// `ImplType_COLOR_NODE`. Safe.
    [[nodiscard]] static ImplType getImplType();

    /// The version of the interface classes: 0.1.0. Null pointers are skipped. Safe.
    static void getPluginVersion(int* major, int* minor, int* patch);

    /// Makes the device that the store names, and initialises it with the event. A second call replaces the
    /// first; one that fails leaves a node that can be disposed or initialised again. Overriders call it
    /// first.
    /// \param store lives until `dispose`
    /// \param data the host's; may be null, not owned
    /// \throws Zentara::Plugin::ArgumentPluginException if `event` or `store` is null
    /// \throws what the proxy's construction and the device's initialisation throw
    virtual void initialize(NodeEvent* event, DescriptorStoreRO* store, ColorProcessorData* data);

    /// Deletes the device and forgets store and data. Twice is harmless. Overriders call it last.
    virtual void dispose();

    /// Puts the camera into the mode and starts its stream.
    virtual void enableStreaming(Utils::SmartPtr<ColorConfiguration> configuration) = 0;
    virtual void disableStreaming() = 0; ///< a `readBuffer` that waits returns at once

    /// \throws Zentara::Plugin::NotSupportedPluginException by default
    virtual void resetDevice();

    /// The modes in which the node can stream, the one to start with first.
    [[nodiscard]] virtual std::vector<Utils::SmartPtr<ColorConfiguration>> getConfigurations() = 0;

    /// What the camera's settings accept, how one is set, and what they are now; units stand at `CameraControlsEnum`.
    [[nodiscard]] virtual CameraControlRanges getCameraControlRanges() = 0;
    virtual void setCameraControl(CameraControlsEnum control, CameraControlValue value) = 0;
    [[nodiscard]] virtual CameraControls getCameraControls() = 0;

    /// Waits for the next frame and copies it. `ReadBufferStatus` says what comes as a status and what as an
    /// exception, how long the call may take, and what a host does about each.
    /// \param size of `buffer` in bytes
    /// \param timestamp receives when the frame was taken, in microseconds
    /// \param length receives the frame's bytes
    virtual ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) = 0;

    /// What `initialize` made and was given; null before it and after `dispose`. The proxy stays the node's.
    [[nodiscard]] IO::VideoDeviceProxy* getAVDeviceProxy() const;
    [[nodiscard]] DescriptorStoreRO* getDescriptorStore() const;
    [[nodiscard]] ColorProcessorData* getColorProcessorData() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Core
