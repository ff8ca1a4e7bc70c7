#pragma once

#include <memory>
#include <string>

#include <zentara/io/audio_device_interface.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/thread_annotations.h>

#include "plugins/alsa/microphone.h"
#include "plugins/linux/call_thread.h"

namespace Zentara::Alsa {

/// The microphone of a camera, or any input of a sound card, through ALSA. Blocks are 10 ms of interleaved samples in the
/// machine's byte order; their time is the kernel's, of the first sample. After an overrun it goes on, and the times show
/// what is missing.
///
/// What may wait for the card is done by a thread of the device's own, as with the cameras: an operation is back in 1.8 s,
/// and while the card owes an answer all others fail at once. Safe.
class AlsaDevice final : public IO::AudioDeviceInterface {
public:
    /// What a device takes that was initialised with no node.
    static constexpr const char* defaultPath = "default";

    AlsaDevice();
    ~AlsaDevice() override;

    void initialize(NodeEvent* event, Core::DescriptorStoreRO* store) override;
    void dispose() override;
    void threadInitialize() override;
    void threadUninitialize() override;
    bool cancelIO() override;
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override;
    void open(IO::deviceRequest* request) override;
    void close(IO::deviceRequest* request) override;
    void disableStreaming(IO::disableRequest* request) override;
    void getDefaultConfiguration(IO::getAudioDefaultConfigurationsRequest* request) override;
    /// A card without a mixer for its input has the level and the mute that it has; the log says so.
    void enableStreaming(IO::enableAudioRequest* request) override;
    /// \throws Plugin::ArgumentPluginException unless the level is from 0 to 1, Plugin::NotSupportedPluginException for a
    ///         card without such a control
    void setInputMixerLevel(IO::setAudioLevelRequest* request) override;
    void setMute(IO::setAudioMuteRequest* request) override;

private:
    template<typename Work>
    auto call(IO::deviceRequest* request, const std::string& what, Work work);
    [[nodiscard]] std::shared_ptr<Microphone> require(const char* operation);
    [[nodiscard]] std::shared_ptr<Linux::CallThread> caller();
    void letGo() noexcept;

    std::string path;                ///< does not change while the device is open
    Utils::Threading::Mutex reading; ///< a reader's; taken before `lock`
    Utils::Threading::Mutex lock;    ///< never held while waiting
    std::shared_ptr<Linux::CallThread>
        ownThread ZENTARA_GUARDED_BY(lock); ///< null when nothing was opened yet
    std::shared_ptr<Microphone> microphone ZENTARA_GUARDED_BY(lock);
};

} // namespace Zentara::Alsa
