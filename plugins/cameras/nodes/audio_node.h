#pragma once

#include <memory>
#include <vector>

#include <zentara/core/audio_node_interface.h>

namespace Zentara::Cameras {

/// The microphones of a described camera: blocks of sound as its device delivers them. Each start begins at half the
/// full level; another one, or silence, is set at the device while it streams.
class AudioNode : public Core::AudioNodeInterface {
public:
    AudioNode();
    ~AudioNode() override;

    void initialize(NodeEvent* event, Core::DescriptorStoreRO* store, AudioProcessorData* data) override;
    void dispose() override;

    /// \throws Plugin::ConfigurationPluginException for a mode that the device does not have,
    ///         Plugin::InvalidOperationPluginException while it streams
    void enableStreaming(Utils::SmartPtr<AudioConfiguration> configuration) override;
    /// Does nothing while it does not stream.
    void disableStreaming() override;

    /// Those of the description, or the device's own one for a description without.
    [[nodiscard]] std::vector<Utils::SmartPtr<AudioConfiguration>> getConfigurations() override;
    [[nodiscard]] Utils::SmartPtr<AudioConfiguration> getDefaultConfiguration() override;
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override;

protected:
    explicit AudioNode(GUID guid);

private:
    struct Microphones;

    Microphones& require(const char* operation);
    void stop() noexcept;

    std::unique_ptr<Microphones> microphones; ///< null unless initialised
};

/// The microphones of a device that no description names, in the mode that the device itself reports. Of its store it
/// needs the device's implementation alone.
class GenericAudioNode final : public AudioNode {
public:
    GenericAudioNode();
};

} // namespace Zentara::Cameras
