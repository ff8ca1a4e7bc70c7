#pragma once

#include <zentara/io/av_device_interface.h>

namespace Zentara::IO {

class enableAudioRequest;
class getAudioDefaultConfigurationsRequest;
class setAudioLevelRequest;
class setAudioMuteRequest;

/// What an audio back-end implements. A stream is blocks of samples as its mode says: the channels in turn, in the
/// machine's byte order.
class ZENTARA_API AudioDeviceInterface : public AVDeviceInterface {
public:
    explicit AudioDeviceInterface(GUID guid);
    ~AudioDeviceInterface() override;

    /// `Core::ImplType_AUDIO_DEVICE`. Safe.
    [[nodiscard]] static Core::ImplType getImplType();

    /// Fills the request's configuration, which may be null, with the mode that the device starts with.
    virtual void getDefaultConfiguration(getAudioDefaultConfigurationsRequest* request) = 0;

    /// Starts the stream in the request's mode, with its level and mute.
    virtual void enableStreaming(enableAudioRequest* request) = 0;

    /// These two change the input's level, 0 (silent) to 1 (full), and mute, also of a running stream.
    virtual void setInputMixerLevel(setAudioLevelRequest* request) = 0;
    virtual void setMute(setAudioMuteRequest* request) = 0;
};

} // namespace Zentara::IO
