#include <zentara/core/plugin_exports.h>
#include <zentara/io/audio_device_interface.h>
#include <zentara/io/audio_requests.h>

#include "io/plugins/recording_device.h"

namespace {

using namespace Zentara::IO;

class AudioDevice : public Testing::RecordingDevice<AudioDeviceInterface> {
public:
    AudioDevice() : RecordingDevice(Testing::AUDIO_DEVICE) {}

    void getDefaultConfiguration(getAudioDefaultConfigurationsRequest* request) override {
        script.called(13, request);
    }
    void enableStreaming(enableAudioRequest* request) override { script.called(14, request); }
    void setInputMixerLevel(setAudioLevelRequest* request) override { script.called(15, request); }
    void setMute(setAudioMuteRequest* request) override { script.called(16, request); }
};

} // namespace

ZENTARA_DEFINE_PLUGIN(AudioDevice, Testing::AUDIO_DEVICE, Zentara::Core::ImplType_AUDIO_DEVICE, 1, 0, 0)
