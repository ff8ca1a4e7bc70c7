#include <zentara/io/audio_device_proxy.h>

#include <utility>

#include <zentara/audio_configuration.h>
#include <zentara/io/audio_device_interface.h>
#include <zentara/io/streaming_requests.h>

#include "io/device_link.h"
#include "io/owned_requests.h"

namespace Zentara::IO {

struct AudioDeviceProxy::Impl : DeviceLink<AudioDeviceInterface> {
    using DeviceLink::DeviceLink;
};

AudioDeviceProxy::AudioDeviceProxy(GUID guid, bool proxified)
    : AVDeviceProxy(proxified), impl(std::make_unique<Impl>(guid)) {
    impl->initializeThread(*this);
}

AudioDeviceProxy::~AudioDeviceProxy() { AudioDeviceProxy::dispose(); }

// These two take the mutex; those of the video proxy do not.
void AudioDeviceProxy::threadInitialize() {
    const Utils::Threading::AutoLock hold(impl->mutex);
    impl->ask(&AudioDeviceInterface::threadInitialize);
}

void AudioDeviceProxy::threadUninitialize() {
    const Utils::Threading::AutoLock hold(impl->mutex);
    impl->ask(&AudioDeviceInterface::threadUninitialize);
}

ReadBufferStatus AudioDeviceProxy::readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) {
    return impl->ask(&AudioDeviceInterface::readBuffer, buffer, size, timestamp, length);
}

void AudioDeviceProxy::open() {
    impl->call<deviceRequest>(*this, &AudioDeviceInterface::open, RequestType_OPEN);
}

void AudioDeviceProxy::close() {
    impl->call<deviceRequest>(*this, &AudioDeviceInterface::close, RequestType_CLOSE);
}

void AudioDeviceProxy::disableStreaming(bool flag) {
    impl->call<disableRequest>(*this, &AudioDeviceInterface::disableStreaming, flag);
}

void AudioDeviceProxy::getDefaultConfiguration(Utils::SmartPtr<AudioConfiguration> configuration) {
    impl->call<getAudioDefaultConfigurationsRequest, OwnedAudioConfigurationRequest>(
        *this, &AudioDeviceInterface::getDefaultConfiguration, std::move(configuration));
}

void AudioDeviceProxy::enableStreaming(Utils::SmartPtr<AudioConfiguration> configuration, float level,
                                       bool mute) {
    impl->call<enableAudioRequest, OwnedAudioRequest>(*this, &AudioDeviceInterface::enableStreaming,
                                                      std::move(configuration), level, mute);
}

void AudioDeviceProxy::setInputMixerLevel(float level) {
    impl->call<setAudioLevelRequest>(*this, &AudioDeviceInterface::setInputMixerLevel, level);
}

void AudioDeviceProxy::setMute(bool mute) {
    impl->call<setAudioMuteRequest>(*this, &AudioDeviceInterface::setMute, mute);
}

void AudioDeviceProxy::initialize(NodeEvent* event, Core::DescriptorStoreRO* store) {
    impl->ask(&AudioDeviceInterface::initialize, event, store);
}

void AudioDeviceProxy::dispose() {
    // The video proxy words it differently.
    impl->uninitializeThread(*this, "threadUninitialize operation failed");
    AVDeviceProxy::dispose();
    impl->release(*this);
}

} // namespace Zentara::IO
