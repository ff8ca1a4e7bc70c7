#pragma once

#include <memory>

#include <zentara/io/audio_device_interface.h>

#include "plugins/alsa/microphone.h"
#include "plugins/linux/kernel_device.h"

namespace Zentara::Alsa {

/// The microphone of a camera, or any input of a sound card, through ALSA. Blocks are 10 ms of interleaved samples in the
/// machine's byte order; their time is the kernel's, of the first sample. After an overrun it goes on, and the times show
/// what is missing.
///
/// What may wait for the card is done by a thread of the device's own, as with the cameras: an operation is back in 1.8 s,
/// and while the card owes an answer all others fail at once. Safe.
class AlsaDevice final : public Linux::KernelDevice<IO::AudioDeviceInterface, Microphone> {
public:
    /// What a device takes that was initialised with no node.
    static constexpr const char* defaultPath = "default";

    AlsaDevice();
    ~AlsaDevice() override;

    void initialize(NodeEvent* event, Core::DescriptorStoreRO* store) override;
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override;
    void open(IO::deviceRequest* request) override;
    void disableStreaming(IO::disableRequest* request) override;
    void getDefaultConfiguration(IO::getAudioDefaultConfigurationsRequest* request) override;
    /// Levels follow the mixer's decibels, about as loud as they sound, where it tells them. A card without a mixer for its
    /// input has the level and the mute that it has; the log says so.
    void enableStreaming(IO::enableAudioRequest* request) override;
    /// \throws Plugin::ArgumentPluginException unless the level is from 0 to 1, Plugin::NotSupportedPluginException for a
    ///         card without such a control
    void setInputMixerLevel(IO::setAudioLevelRequest* request) override;
    void setMute(IO::setAudioMuteRequest* request) override;

private:
    std::shared_ptr<void> endStream() noexcept override ZENTARA_REQUIRES(lock);
};

} // namespace Zentara::Alsa
