#include <zentara/core/plugin_exports.h>
#include <zentara/io/camera_control_requests.h>
#include <zentara/io/transfer_requests.h>
#include <zentara/io/video_device_interface.h>
#include <zentara/io/xu_device_requests.h>

#include "io/plugins/recording_device.h"

namespace {

using namespace Zentara::IO;

class VideoDevice : public Testing::RecordingDevice<VideoDeviceInterface> {
public:
    VideoDevice() : RecordingDevice(Testing::VIDEO_GUID) {}

    void getCameraControlRanges(getCameraControlRangesRequest* request) override {
        script.called(13, request);
    }
    void getConfigurations(getColorConfigurationsRequest* request) override { script.called(14, request); }
    void enableColorStreaming(enableColorRequest* request) override { script.called(15, request); }
    void enableDepthStreaming(enableDepthRequest* request) override { script.called(16, request); }
    void setCameraControl(setCameraControlRequest* request) override { script.called(17, request); }
    void send(xuSendRequest* request) override { script.called(18, request); }
    void recv(xuRecvRequest* request) override { script.called(19, request); }
    void len(xuLenRequest* request) override { script.called(20, request); }
    void xuSetup(xuSetupRequest* request) override { script.called(21, request); }
#if !defined(ONLY_WHAT_IT_MUST)
    void read(readControlTransferRequest* request) override { script.called(22, request); }
    void write(writeBulkTransferRequest* request) override { script.called(23, request); }
    void write(writeControlTransferRequest* request) override { script.called(24, request); }
    void pauseStreaming(pauseStreamingRequest* request) override { script.called(25, request); }
    void resumeStreaming(resumeStreamingRequest* request) override { script.called(26, request); }
    void setRegionOfInterest(setDeviceRegionOfInterestRequest* request) override {
        script.called(27, request);
    }
    void setOutputFormat(setOutputFormatRequest* request) override { script.called(28, request); }
#endif
};

} // namespace

ZENTARA_DEFINE_PLUGIN(VideoDevice, Testing::VIDEO_GUID, Zentara::Core::ImplType_VIDEO_DEVICE, 1, 0, 0)
