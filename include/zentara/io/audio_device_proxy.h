#pragma once

#include <zentara/guid.h>
#include <zentara/io/av_device_proxy.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara {
class AudioConfiguration;
struct NodeEvent;
} // namespace Zentara

namespace Zentara::Core {
class AudioNodeInterface;
class DescriptorStoreRO;
} // namespace Zentara::Core

namespace Zentara::IO {

/// An audio device as a host sees it: see `AVDeviceProxy`.
class ZENTARA_API AudioDeviceProxy : public AVDeviceProxy {
public:
    /// Makes the device and has it prepare the thread on which it will be called.
    /// \throws Zentara::Plugin::InitializationPluginException "couldn't find GUID GUID", "ImplType mismatch", or
    ///         "Couldn't instantiate object GUID"
    /// \throws what the device's thread initialisation throws; nothing is held then, save in proxified mode by a thread
    ///         initialisation that timed out: that keeps the device until it ends
    AudioDeviceProxy(GUID guid, bool proxified);

    /// Has the device take its preparation of the thread back, and releases it. Throws nothing.
    ~AudioDeviceProxy() override;

    /// Under the proxy's mutex.
    void threadInitialize() override;
    void threadUninitialize() override;
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override;
    void open() override;
    void close() override;
    void disableStreaming(bool flag) override;

    /// Fills the configuration with the mode that the device starts with. In proxified mode the device fills a plain
    /// AudioConfiguration, and of a derived one that part alone changes.
    void getDefaultConfiguration(Utils::SmartPtr<AudioConfiguration> configuration);

    /// Starts the stream in a mode.
    /// \param level of the input mixer, 0 (silent) to 1 (full)
    void enableStreaming(Utils::SmartPtr<AudioConfiguration> configuration, float level, bool mute);

    /// \param level 0 (silent) to 1 (full)
    void setInputMixerLevel(float level);

    /// Silences the input or opens it again.
    void setMute(bool mute);

protected:
    /// Calls the device's `initialize` directly, for as long as it takes.
    void initialize(NodeEvent* event, Core::DescriptorStoreRO* store);

    /// The destructor's work: waits for the worker as other operations do, then for as long as the device's `dispose`
    /// takes. In a child of fork a proxified device is left as it is. Disposing twice is harmless; afterwards every
    /// operation throws `Zentara::Plugin::InvalidOperationPluginException`.
    void dispose() override;

private:
    friend class Core::AudioNodeInterface;
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::IO
