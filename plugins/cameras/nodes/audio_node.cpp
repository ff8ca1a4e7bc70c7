#include "plugins/cameras/nodes/audio_node.h"

#include <zentara/audio_configuration.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/io/audio_device_proxy.h>
#include <zentara/node_event.h>
#include <zentara/utils/format.h>

#include "plugins/cameras/nodes/attempt.h"
#include "plugins/cameras/plugin_guids.h"

namespace Zentara::Cameras {
namespace {

// Inside the node's own operations "Plugin" is the base class, so the exceptions are named here.
using Mode = Utils::SmartPtr<AudioConfiguration>;
using Utils::Format;
using Utils::makeRefcounted;
using Zentara::Plugin::ArgumentPluginException;
using Zentara::Plugin::InvalidOperationPluginException;

constexpr float startLevel = 0.5F;

std::vector<Mode> modesOf(const Core::DescriptorStoreRO& store, IO::AudioDeviceProxy& device) {
    std::vector<Mode> modes = store.getAudioConfigurations();
    std::erase(modes, Mode());
    if (modes.empty()) {
        modes.push_back(makeRefcounted<AudioConfiguration>());
        device.getDefaultConfiguration(modes.back());
    }
    return modes;
}

} // namespace

/// Everything that lives from `initialize` to `dispose`.
struct AudioNode::Microphones {
    Microphones(const Core::DescriptorStoreRO& store, IO::AudioDeviceProxy& audio)
        : device(audio), modes(modesOf(store, audio)) {}

    IO::AudioDeviceProxy& device;
    const std::vector<Mode> modes; ///< one at least
    bool streaming = false;
};

AudioNode::AudioNode() : AudioNode(audioNodeGuid) {}

AudioNode::AudioNode(GUID guid) : AudioNodeInterface(guid) {}

GenericAudioNode::GenericAudioNode() : AudioNode(genericAudioNodeGuid) {}

AudioNode::~AudioNode() { dispose(); }

void AudioNode::initialize(NodeEvent* event, Core::DescriptorStoreRO* store, AudioProcessorData* data) {
    dispose();
    AudioNodeInterface::initialize(event, store, data);
    getAVDeviceProxy()->open();
    microphones = std::make_unique<Microphones>(*store, *getAVDeviceProxy());
}

void AudioNode::dispose() {
    if (microphones)
        stop();
    microphones.reset();
    AudioNodeInterface::dispose();
}

AudioNode::Microphones& AudioNode::require(const char* operation) {
    if (!microphones)
        throw InvalidOperationPluginException(Format("%: the node is not initialized") % operation);
    return *microphones;
}

void AudioNode::enableStreaming(Mode configuration) {
    Microphones& present = require("enableStreaming");
    if (!configuration)
        throw ArgumentPluginException("enableStreaming: the configuration is null");
    if (present.streaming)
        throw InvalidOperationPluginException("enableStreaming: the node streams already; disable it first");
    present.streaming = true;
    try {
        present.device.enableStreaming(configuration, startLevel, false);
    } catch (...) {
        stop(); // the device may start yet, after its caller has given up
        throw;
    }
}

void AudioNode::disableStreaming() {
    Microphones& present = require("disableStreaming");
    if (!present.streaming)
        return;
    present.device.disableStreaming(false);
    present.streaming = false;
}

void AudioNode::stop() noexcept {
    if (!microphones->streaming)
        return;
    microphones->streaming = false;
    attempt([&] { microphones->device.disableStreaming(false); });
}

std::vector<Mode> AudioNode::getConfigurations() {
    std::vector<Mode> copies;
    for (const Mode& mode : require("getConfigurations").modes)
        copies.push_back(makeRefcounted<AudioConfiguration>(*mode));
    return copies;
}

Mode AudioNode::getDefaultConfiguration() {
    return makeRefcounted<AudioConfiguration>(*require("getDefaultConfiguration").modes.front());
}

ReadBufferStatus AudioNode::readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) {
    return require("readBuffer").device.readBuffer(buffer, size, timestamp, length);
}

} // namespace Zentara::Cameras
