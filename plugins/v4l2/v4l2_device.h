#pragma once

#include <memory>
#include <optional>

#include <zentara/io/video_device_interface.h>
#include <zentara/region_of_interest_internal.h>

#include "plugins/linux/kernel.h"
#include "plugins/linux/kernel_device.h"
#include "plugins/v4l2/capture.h"
#include "plugins/v4l2/extension_units.h"

namespace Zentara::V4l2 {

/// A video node that is open. Used on the device's own thread.
struct Node {
    std::shared_ptr<DeviceFile> file;
    std::unique_ptr<ExtensionUnits> units;
};

/// A camera behind a video node of the Linux kernel ("/dev/video0"): colour, or 16-bit depth, and the extension units of
/// USB cameras.
///
/// Colour is delivered as packed YUY2 whatever the camera sends, luminance from 16 to 235; in modes that say that they are
/// compressed, as the camera's JPEG or H.264 pictures. Depth is delivered as it comes, without padding. Timestamps are the
/// kernel's, of the monotonic clock.
///
/// Every call that may wait for the camera is made by a thread of the device's own (CallThread): an operation is back in
/// 1.8 s at most, and while the camera owes an answer all others fail at once. A stream's reader waits for frames itself,
/// and is back within a second. Cancelling ends an operation's wait, not the call. `dispose` and the destructor end the
/// stream and let the node go; a camera that does not answer keeps the thread and the node, until it does, and nobody who
/// waits.
///
/// `recv` without its flag first sends the bytes that it is given, as the question that is then answered. Control and bulk
/// transfers are none of this kernel interface. Safe.
class V4l2Device final : public Linux::KernelDevice<IO::VideoDeviceInterface, Node> {
public:
    /// Where a device looks that was initialised with no node: a bare one, for its users' tests.
    static constexpr const char* defaultPath = "/dev/video0";

    V4l2Device();
    explicit V4l2Device(std::shared_ptr<Linux::Kernel> kernel);
    ~V4l2Device() override;

    void initialize(NodeEvent* event, Core::DescriptorStoreRO* store) override;

    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override;

    void open(IO::deviceRequest* request) override;
    void close(IO::deviceRequest* request) override;
    void disableStreaming(IO::disableRequest* request) override;

    void getCameraControlRanges(IO::getCameraControlRangesRequest* request) override;
    /// Of a depth node, its depth modes as if they were colour ones. A node that a description names has the modes alone
    /// whose size has a name.
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
    /// The camera stops, and starts again; the reader times out meanwhile.
    void pauseStreaming(IO::pauseStreamingRequest* request) override;
    void resumeStreaming(IO::resumeStreamingRequest* request) override;
    /// From the next start on. \throws Plugin::NotSupportedPluginException when the driver cannot, as those of USB cameras
    void setRegionOfInterest(IO::setDeviceRegionOfInterestRequest* request) override;

private:
    std::shared_ptr<void> endStream() noexcept override ZENTARA_REQUIRES(lock);
    [[nodiscard]] std::shared_ptr<Capture> present();
    template<typename Prepare>
    void start(IO::deviceRequest* request, const WantedStream& wanted, Prepare prepare);
    [[nodiscard]] std::uint32_t describedFourCC() const;

    const std::shared_ptr<Linux::Kernel> kernel;
    /// Null unless it streams. Destroyed before the node is, on the device's own thread.
    std::shared_ptr<Capture> capture ZENTARA_GUARDED_BY(lock);
    /// Of later streams; nothing: the whole sensor.
    std::optional<RegionOfInterestInternal> region ZENTARA_GUARDED_BY(lock);
};

} // namespace Zentara::V4l2
