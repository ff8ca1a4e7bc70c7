#pragma once

#include <cstdint>
#include <memory>

#include <zentara/io/video_device_interface.h>

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
class SimulatedVideoDevice final : public IO::VideoDeviceInterface {
public:
    /// With the settings of the environment, and the controller that they name.
    /// \throws Plugin::ConfigurationPluginException when the settings are wrong.
    SimulatedVideoDevice();
    ~SimulatedVideoDevice() override;

    void dispose() override;
    void initialize(NodeEvent* event, Core::DescriptorStoreRO* store) override;
    void threadInitialize() override;
    void threadUninitialize() override;

    /// Ends a hang, else the wait for a frame; false when there is neither, or when cancels are refused.
    bool cancelIO() override;

    /// Waits for the next frame, at most a second. `length` receives the bytes of a frame also when the buffer is
    /// too small. \return OK, TOO_SMALL, NOT_STREAMING, TIMEOUT (the stream is paused), FAILED (cancelled)
    /// or DISCONNECTED (the camera was unplugged)
    /// \throws Plugin::ArgumentPluginException if a pointer is null
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override;

    void open(IO::deviceRequest* request) override;
    void close(IO::deviceRequest* request) override;
    void disableStreaming(IO::disableRequest* request) override;
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
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Simulated
