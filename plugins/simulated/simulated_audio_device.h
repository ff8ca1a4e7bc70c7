#pragma once

#include <zentara/io/audio_device_interface.h>

#include "plugins/simulated/simulated_device.h"

namespace Zentara::Simulated {

/// An audio device without hardware: a Tone on two channels, in real time, in blocks of 10 ms.
/// wire.h says what readBuffer writes; timestamps are microseconds of the monotonic clock. A reader that is
/// late finds up to a second of blocks waiting; older ones are lost.
/// Behaves, and misbehaves, as its Settings say. Safe.
///
/// Order of calls: open, enableStreaming, readBuffer, disableStreaming, close. Closing ends the stream.
class SimulatedAudioDevice final : public SimulatedDevice<IO::AudioDeviceInterface> {
public:
    /// \throws Plugin::ConfigurationPluginException when the settings of the environment are wrong.
    SimulatedAudioDevice();

    void initialize(NodeEvent* event, Core::DescriptorStoreRO* store) override;

    /// Waits for the next block, at most a second. `length` receives the bytes of a block also when the buffer is
    /// too small. \return OK, TOO_SMALL, NOT_STREAMING, TIMEOUT, FAILED (cancelled) or
    /// DISCONNECTED (the camera was unplugged)
    /// \throws Plugin::ArgumentPluginException if a pointer is null
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override;

    void getDefaultConfiguration(IO::getAudioDefaultConfigurationsRequest* request) override;
    void enableStreaming(IO::enableAudioRequest* request) override;
    void setInputMixerLevel(IO::setAudioLevelRequest* request) override;
    void setMute(IO::setAudioMuteRequest* request) override;

private:
    float level ZENTARA_GUARDED_BY(lock) = 0.5F; ///< 0 to 1
    bool muted ZENTARA_GUARDED_BY(lock) = false;
};

} // namespace Zentara::Simulated
