#pragma once

#include <zentara/io/av_device_interface.h>

namespace Zentara::IO {

class enableAudioRequest;
class getAudioDefaultConfigurationsRequest;
class setAudioLevelRequest;
class setAudioMuteRequest;

/// What an audio back-end implements.
class ZENTARA_API AudioDeviceInterface : public AVDeviceInterface {
public:
    explicit AudioDeviceInterface(GUID guid);
    ~AudioDeviceInterface() override;

    /// `Core::ImplType_AUDIO_DEVICE`. Safe.
    [[nodiscard]] static Core::ImplType getImplType();

    /// Fills the request's configuration.
    virtual void getDefaultConfiguration(getAudioDefaultConfigurationsRequest* request) = 0;

    /// Starts the stream in the request's mode, with its level and mute.
    virtual void enableStreaming(enableAudioRequest* request) = 0;

    /// These two change the input's level and mute, also of a running stream.
    virtual void setInputMixerLevel(setAudioLevelRequest* request) = 0;
    virtual void setMute(setAudioMuteRequest* request) = 0;
};

} // namespace Zentara::IO
