#include <zentara/core/audio_node_interface.h>

#include <zentara/io/audio_device_proxy.h>

#include "core/interface_version.h"
#include "core/nodes/node_link.h"

namespace Zentara::Core {

struct AudioNodeInterface::Impl : NodeLink<IO::AudioDeviceProxy, AudioProcessorData> {};

AudioNodeInterface::AudioNodeInterface(GUID guid)
    : Plugin(getImplType(), guid), impl(std::make_unique<Impl>()) {}

AudioNodeInterface::~AudioNodeInterface() = default;

ImplType AudioNodeInterface::getImplType() { return ImplType_AUDIO_NODE; }

void AudioNodeInterface::getPluginVersion(int* major, int* minor, int* patch) {
    reportInterfaceVersion(major, minor, patch);
}

void AudioNodeInterface::initialize(NodeEvent* event, DescriptorStoreRO* store, AudioProcessorData* data) {
    impl->connect(event, store, data).initialize(event, store);
}

void AudioNodeInterface::dispose() { impl->disconnect(); }

void AudioNodeInterface::resetDevice() {
    throw Zentara::Plugin::NotSupportedPluginException(
        "Reset Device operation is not supported by this audio node implementation");
}

// Unlike the operations that nodes may leave out, these two report a wrong configuration.
void AudioNodeInterface::setInputMixerLevel(float /*level*/) {
    throw Zentara::Plugin::ConfigurationPluginException(
        "Setting mixer level is not supported by this device");
}

void AudioNodeInterface::setMute(bool /*mute*/) {
    throw Zentara::Plugin::ConfigurationPluginException("Setting mute is not supported by this device");
}

IO::AudioDeviceProxy* AudioNodeInterface::getAVDeviceProxy() const { return impl->proxy.get(); }

DescriptorStoreRO* AudioNodeInterface::getDescriptorStore() const { return impl->store; }

AudioProcessorData* AudioNodeInterface::getAudioProcessorData() const { return impl->data; }

} // namespace Zentara::Core
