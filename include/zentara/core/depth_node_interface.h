#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <zentara/acceleration_internal.h>
#include <zentara/core/impl_type.h>
#include <zentara/core/plugin.h>
#include <zentara/cyclic_error_correction.h>
#include <zentara/depth_node.h>
#include <zentara/diagnostic_data.h>
#include <zentara/export.h>
#include <zentara/frame_format.h>
#include <zentara/guid.h>
#include <zentara/read_buffer_status.h>
#include <zentara/sensor_value_array.h>
#include <zentara/stereo_camera_parameters_array.h>
#include <zentara/temperature_calibration.h>
#include <zentara/temperature_compensation.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara {
class CalibrationInternal;
class DepthBaseConfiguration;
class DepthProcessorData;
struct NodeEvent;
} // namespace Zentara

namespace Zentara::IO {
class VideoDeviceProxy;
class xuRequest;
} // namespace Zentara::IO

namespace Zentara::Core {

class AccelerometerPeriodicOperation;
class DescriptorStoreRO;
class PeriodicOperation;
class TemperaturePeriodicOperation;

/// What a depth-node plug-in implements: one depth stream of one camera. This class owns the link to the
/// node's device, whose traffic all goes through the device proxy's worker thread, and supplies defaults
/// for everything that is optional.
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
class ZENTARA_API DepthNodeInterface : public Plugin {
public:
    explicit DepthNodeInterface(GUID guid);
    DepthNodeInterface(const DepthNodeInterface&) = delete;
    DepthNodeInterface& operator=(const DepthNodeInterface&) = delete;
    ~DepthNodeInterface() override;

    /// `ImplType_DEPTH_NODE`. Safe.
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
    virtual void initialize(NodeEvent* event, DescriptorStoreRO* store, DepthProcessorData* data);

    /// Deletes the device and forgets store and data. Twice is harmless. Overriders call it last.
    virtual void dispose();

    /// The firmware's major and minor version; both 0 by default.
    virtual void getVersions(int& majorVersion, int& minorVersion);

    /// The readings that the node is to make while it streams; by default none is made.
    virtual void configurePeriodicOperations(std::vector<Utils::SmartPtr<PeriodicOperation>> operations);

    /// Puts the camera into the mode and starts its stream, with the requests around the mode's own.
    virtual void enableStreaming(Utils::SmartPtr<DepthBaseConfiguration> configuration) = 0;
    virtual void disableStreaming() = 0; ///< a `readBuffer` that waits returns at once

    /// \throws Zentara::Plugin::NotSupportedPluginException by default
    virtual void resetDevice();

    /// How bright the illumination is in a camera mode, in percent; does nothing by default.
    virtual void setIlluminationLevel(DepthNode::CameraMode mode, int level);

    /// Changes the mode of a running stream. \throws Zentara::Plugin::NotSupportedPluginException by default
    virtual void setConfiguration(Utils::SmartPtr<DepthBaseConfiguration> configuration);

    /// \param calibration stays the caller's; does nothing by default
    virtual void setCalibration(CalibrationInternal* calibration);

    /// How large a raw frame may be, for who makes room for one; 8 by default.
    [[nodiscard]] virtual unsigned int getMaximumRawBytesPerPixel();

    /// What a raw phase value is multiplied with to be a distance in millimetres; 1.0 by default.
    [[nodiscard]] virtual float getPhaseScaling();

    /// Executes one request on the camera. \throws Zentara::Plugin::NotSupportedPluginException by default
    virtual void process(Utils::SmartPtr<IO::xuRequest> request);

    /// What `getDiagnosticData` answers from now on. Does nothing by default.
    virtual void setDiagnosticData(DiagnosticData data);

    /// The present temperatures, degrees Celsius; none by default.
    [[nodiscard]] virtual SensorValueArray readTemperatures();

    /// The readings of a periodic operation, in g and degrees Celsius; all 0 and none by default.
    /// \param operation stays the caller's
    [[nodiscard]] virtual AccelerationInternal readAccelerometer(AccelerometerPeriodicOperation* operation);
    [[nodiscard]] virtual SensorValueArray readTemperature(TemperaturePeriodicOperation* operation);

    /// The unambiguous range in metres; 0.0 by default.
    [[nodiscard]] virtual float getRange();

    /// The size of the frames on the sensor's port; `FrameFormat_DEFAULT` by default.
    [[nodiscard]] virtual FrameFormat getDVPFrameMode();

    /// The camera's calibration, as copies; empty by default. Whose numbers they are, the camera's own or its model's,
    /// `CalibrationSources` tells where the node has it.
    [[nodiscard]] virtual StereoCameraParametersArray getImageRegistrationCalibration();
    [[nodiscard]] virtual SensorValueArray getTemperatureCalibration(DepthNode::CameraMode mode);
    [[nodiscard]] virtual TemperatureCalibration getTemperatureCalibration();
    [[nodiscard]] virtual TemperatureCompensation getTemperatureCompensation() = 0;
    [[nodiscard]] virtual CyclicErrorCorrection getCyclicErrorCorrection();

    /// Both counters 0 by default.
    [[nodiscard]] virtual DiagnosticData getDiagnosticData();

    /// The camera's; empty by default.
    [[nodiscard]] virtual std::string getSerialNumber();

    /// The accelerometer's offsets, in g; all 0 by default.
    [[nodiscard]] virtual AccelerationInternal getAccelerometerCalibration();

    /// Reads the camera's ROM again, from the camera when `force` is true; does nothing by default.
    virtual void reloadROMLayout(bool force);

    /// Does nothing by default.
    virtual void setEnableVideoSync(Utils::SmartPtr<DepthBaseConfiguration> configuration, bool enabled);

    /// False by default.
    [[nodiscard]] virtual bool getEnableVideoSync() const;

    /// The modes in which the node can stream, the one to start with first.
    [[nodiscard]] virtual std::vector<Utils::SmartPtr<DepthBaseConfiguration>> getConfigurations() = 0;

    /// Waits for the next frame and copies it. `ReadBufferStatus` says what comes as a status and what as an
    /// exception, how long the call may take, and what a host does about each.
    /// \param size of `buffer` in bytes
    /// \param timestamp receives when the frame was taken, in microseconds
    /// \param length receives the frame's bytes
    virtual ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) = 0;

    /// What `initialize` made and was given; null before it and after `dispose`. The proxy stays the node's.
    [[nodiscard]] IO::VideoDeviceProxy* getAVDeviceProxy() const;
    [[nodiscard]] DescriptorStoreRO* getDescriptorStore() const;
    [[nodiscard]] DepthProcessorData* getDepthProcessorData() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Core
