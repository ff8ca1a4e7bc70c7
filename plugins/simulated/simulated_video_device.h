#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <zentara/camera_controls.h>
#include <zentara/io/streaming_requests.h>
#include <zentara/io/video_device_interface.h>
#include <zentara/region_of_interest_internal.h>

#include "plugins/simulated/port.h"
#include "plugins/simulated/scene.h"
#include "plugins/simulated/sensor_output.h"
#include "plugins/simulated/simulated_device.h"

namespace Zentara::Simulated {

/// A video device without hardware: depth, and colour, of a Scene at QVGA and 60 frames a second, in real time.
/// wire.h says what readBuffer writes; timestamps are microseconds of the monotonic clock, the times at
/// which the frames fell due. A reader that is late loses frames: the timestamps then jump by more than a period.
/// Behaves, and misbehaves, as its Settings say. Safe.
///
/// Initialised with a node of the SimulatedBus it is a device of that camera: with its settings, with the controller
/// of its description, and gone when it is unplugged. A controller can switch depth to the raw frames of
/// wire.h.
///
/// Order of calls: open, enable a stream, readBuffer, disableStreaming, close. Closing ends the stream.
class SimulatedVideoDevice final : public SimulatedDevice<IO::VideoDeviceInterface> {
public:
    /// With the settings of the environment, and the controller that they name.
    /// \throws Plugin::ConfigurationPluginException when the settings are wrong.
    SimulatedVideoDevice();

    void initialize(NodeEvent* event, Core::DescriptorStoreRO* store) override;

    /// Waits for the next frame, at most a second. `length` receives the bytes of a frame also when the buffer is
    /// too small. \return OK, TOO_SMALL, NOT_STREAMING, TIMEOUT (the stream is paused), FAILED (cancelled)
    /// or DISCONNECTED (the camera was unplugged)
    /// \throws Plugin::ArgumentPluginException if a pointer is null
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override;

    void getCameraControlRanges(IO::getCameraControlRangesRequest* request) override;
    void getConfigurations(IO::getColorConfigurationsRequest* request) override;
    void enableColorStreaming(IO::enableColorRequest* request) override;
    void enableDepthStreaming(IO::enableDepthRequest* request) override;
    void setCameraControl(IO::setCameraControlRequest* request) override;
    void send(IO::xuSendRequest* request) override;
    void recv(IO::xuRecvRequest* request) override;
    void len(IO::xuLenRequest* request) override;
    void xuSetup(IO::xuSetupRequest* request) override;
    void read(IO::readControlTransferRequest* request) override;
    void write(IO::writeBulkTransferRequest* request) override;
    void write(IO::writeControlTransferRequest* request) override;
    void pauseStreaming(IO::pauseStreamingRequest* request) override;
    void resumeStreaming(IO::resumeStreamingRequest* request) override;

    /// Pixels outside the region read as 0; the size of a frame stays. The whole picture unless set.
    void setRegionOfInterest(IO::setDeviceRegionOfInterestRequest* request) override;

    /// Depth with or without the plane of confidence; only while no stream runs. Raw phase is not supported.
    void setOutputFormat(IO::setOutputFormatRequest* request) override;

private:
    using OutputFormat = IO::setOutputFormatRequest::OutputFormat;
    enum class Stream : std::uint8_t { Depth, Color };

    explicit SimulatedVideoDevice(const Settings& settings);

    [[nodiscard]] std::shared_ptr<Port> plugged();
    [[nodiscard]] std::shared_ptr<Port> requirePort(Operation operation);
    [[nodiscard]] std::size_t frameSize(const SensorOutput& output) const ZENTARA_REQUIRES(lock);
    void look(Stream wanted) ZENTARA_REQUIRES(lock);
    void start(Operation operation, Stream wanted) ZENTARA_REQUIRES(lock);
    void render(SensorOutput output, std::uint64_t frame, std::uint8_t* buffer) ZENTARA_REQUIRES(lock);

    std::uint32_t seed ZENTARA_GUARDED_BY(lock);
    Eyes eyes ZENTARA_GUARDED_BY(lock);
    std::optional<Scene> scene ZENTARA_GUARDED_BY(lock);    ///< as the eye of `stream` sees it
    std::uint64_t sceneFrame ZENTARA_GUARDED_BY(lock) = 0;  ///< the scene's at the stream's first frame
    std::shared_ptr<Port> port ZENTARA_GUARDED_BY(lock);    ///< null for a camera without a controller
    Stream stream ZENTARA_GUARDED_BY(lock) = Stream::Depth; ///< the one that runs, or ran last
    OutputFormat format ZENTARA_GUARDED_BY(lock) = OutputFormat::OutputFormat_DEPTH_CONFIDENCE;
    RegionOfInterestInternal region ZENTARA_GUARDED_BY(lock); ///< the device's; the sensor has one of its own
    CameraControls controls ZENTARA_GUARDED_BY(lock);         ///< one of each control
    /// The planes of a frame: the caller's buffer may lie at an odd address.
    std::vector<std::uint16_t> depth ZENTARA_GUARDED_BY(lock);
    std::vector<std::uint16_t> confidence ZENTARA_GUARDED_BY(lock);
};

} // namespace Zentara::Simulated
