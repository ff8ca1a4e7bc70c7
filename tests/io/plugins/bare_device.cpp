#include <zentara/core/plugin_exports.h>
#include <zentara/io/video_device_interface.h>

#include "io/plugins/recording_device.h"

namespace {

using namespace Zentara::IO;

class BareDevice : public Testing::RecordingDevice<VideoDeviceInterface> {
public:
    BareDevice() : RecordingDevice(Testing::BARE_DEVICE) {}

    void getCameraControlRanges(getCameraControlRangesRequest*) override {}
    void getConfigurations(getColorConfigurationsRequest*) override {}
    void enableColorStreaming(enableColorRequest*) override {}
    void enableDepthStreaming(enableDepthRequest*) override {}
    void setCameraControl(setCameraControlRequest*) override {}
    void send(xuSendRequest*) override {}
    void recv(xuRecvRequest*) override {}
    void len(xuLenRequest*) override {}
    void xuSetup(xuSetupRequest*) override {}
};

} // namespace

ZENTARA_DEFINE_PLUGIN(BareDevice, Testing::BARE_DEVICE, Zentara::Core::ImplType_VIDEO_DEVICE, 1, 0, 0)
