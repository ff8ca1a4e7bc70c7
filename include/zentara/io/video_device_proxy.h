#pragma once

#include <vector>

#include <zentara/camera_controls.h>
#include <zentara/guid.h>
#include <zentara/io/av_device_proxy.h>
#include <zentara/io/streaming_requests.h>
#include <zentara/region_of_interest_internal.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara {
class ColorConfiguration;
class DepthBaseConfiguration;
struct NodeEvent;
} // namespace Zentara

namespace Zentara::Core {
class ColorNodeInterface;
class DepthNodeInterface;
class DescriptorStoreRO;
} // namespace Zentara::Core

namespace Zentara::IO {

/// A video device, for depth or colour, as a host sees it: see `AVDeviceProxy`.
class ZENTARA_API VideoDeviceProxy : public AVDeviceProxy {
public:
    /// Makes the device and has it prepare the thread on which it will be called.
    /// \throws Zentara::Plugin::InitializationPluginException "couldn't find GUID GUID", "ImplType mismatch", or
    ///         "Couldn't instantiate object GUID"
    /// \throws what the device's thread initialisation throws; nothing is held then, save in proxified mode by a thread
    ///         initialisation that timed out: that keeps the device until it ends
    VideoDeviceProxy(GUID guid, bool proxified);

    /// Has the device take its preparation of the thread back, and releases it. Throws nothing.
    ~VideoDeviceProxy() override;

    /// Without the proxy's mutex.
    void threadInitialize() override;
    void threadUninitialize() override;
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override;
    void open() override;
    void close() override;
    void disableStreaming(bool flag) override;

    /// Chooses what the device puts into a frame. Has no effect in proxified mode.
    virtual void setOutputFormat(setOutputFormatRequest::OutputFormat format);

    /// Asks what the settings of a colour camera accept; the answer goes into `ranges`.
    void getCameraControlRanges(CameraControlRanges& ranges);

    /// Appends the device's modes.
    void getConfigurations(std::vector<Utils::SmartPtr<ColorConfiguration>>& configurations);

    /// Starts the stream in a mode, of depth or of colour with its first settings.
    void enableStreaming(Utils::SmartPtr<DepthBaseConfiguration> configuration);
    void enableStreaming(Utils::SmartPtr<ColorConfiguration> configuration, CameraControls controls);

    /// Changes one setting of a colour camera.
    void setCameraControl(CameraControlsEnum control, CameraControlValue value);

    /// Sends bytes to a control of an extension unit.
    /// \param data `length` bytes
    void send(std::uint32_t unit, std::int32_t control, std::uint32_t length, const void* data);

    /// Receives bytes from a control of an extension unit.
    /// \param data `length` bytes; what they hold on entry reaches the device
    /// \param flag its meaning is the device's
    void recv(std::uint32_t unit, std::int32_t control, std::uint32_t length, void* data, bool flag);

    /// The bytes that the control has.
    [[nodiscard]] int len(std::uint32_t unit, std::uint32_t control);

    /// Tells the device which extension unit is meant from now on.
    void xuSetup(const GUID& guid);

    /// Control transfers of `length` bytes from and to the device, and a bulk transfer to one of its endpoints.
    /// \throws Zentara::Plugin::NotSupportedPluginException from a device that has none of these
    void read(std::uint8_t requestCode, std::uint16_t value, std::uint16_t index, std::uint8_t* buffer,
              std::uint16_t length);
    void write(std::uint8_t requestCode, std::uint16_t value, std::uint16_t index, const std::uint8_t* buffer,
               std::uint16_t length);
    void write(std::uint8_t endpoint, const std::uint8_t* data, std::int32_t length);

    /// Halts the stream without ending it, and goes on with it.
    void pauseStreaming();
    void resumeStreaming();

    /// Chooses the part of the sensor that is delivered. Has no effect in proxified mode.
    void setRegionOfInterest(const RegionOfInterestInternal& region);

protected:
    /// Calls the device's `initialize` directly, for as long as it takes.
    void initialize(NodeEvent* event, Core::DescriptorStoreRO* store);

    /// The destructor's work: waits for the worker as other operations do, then for as long as the device's `dispose`
    /// takes. In a child of fork a proxified device is left as it is. Disposing twice is harmless; afterwards every
    /// operation throws `Zentara::Plugin::InvalidOperationPluginException`.
    void dispose() override;

private:
    friend class Core::ColorNodeInterface;
    friend class Core::DepthNodeInterface;
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::IO
