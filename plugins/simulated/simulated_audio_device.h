#pragma once

#include <cstdint>
#include <memory>

#include <zentara/io/audio_device_interface.h>

namespace Zentara::Simulated {

/// An audio device without hardware: a Tone on two channels, in real time, in blocks of 10 ms.
/// wire.h says what readBuffer writes; timestamps are microseconds of the monotonic clock. A reader that is
/// late finds up to a second of blocks waiting; older ones are lost.
/// Behaves, and misbehaves, as its Settings say. Safe.
///
/// Order of calls: open, enableStreaming, readBuffer, disableStreaming, close. Closing ends the stream.
class SimulatedAudioDevice final : public IO::AudioDeviceInterface {
public:
    /// \throws Plugin::ConfigurationPluginException when the settings of the environment are wrong.
    SimulatedAudioDevice();
    ~SimulatedAudioDevice() override;

    void dispose() override;
    void initialize(NodeEvent* event, Core::DescriptorStoreRO* store) override;
    void threadInitialize() override;
    void threadUninitialize() override;

    /// Ends a hang, else the wait for a block; false when there is neither, or when cancels are refused.
    bool cancelIO() override;

    /// Waits for the next block, at most a second. `length` receives the bytes of a block also when the buffer is
    /// too small. \return OK, TOO_SMALL, NOT_STREAMING, TIMEOUT, FAILED (cancelled) or
    /// DISCONNECTED (the camera was unplugged)
    /// \throws Plugin::ArgumentPluginException if a pointer is null
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override;

    void open(IO::deviceRequest* request) override;
    void close(IO::deviceRequest* request) override;
    void disableStreaming(IO::disableRequest* request) override;
    void getDefaultConfiguration(IO::getAudioDefaultConfigurationsRequest* request) override;
    void enableStreaming(IO::enableAudioRequest* request) override;
    void setInputMixerLevel(IO::setAudioLevelRequest* request) override;
    void setMute(IO::setAudioMuteRequest* request) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Simulated
