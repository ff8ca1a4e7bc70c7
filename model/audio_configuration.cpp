#include <zentara/audio_configuration.h>

#include <zentara/utils/format.h>

namespace Zentara {

AudioConfiguration::AudioConfiguration() : AudioConfiguration(0, 0, 0) {}

AudioConfiguration::AudioConfiguration(int channelCount, int sampleBits, int rate)
    : Configuration(ConfigurationType_AUDIO, {}), channels(channelCount), bitsPerSample(sampleBits),
      sampleRate(rate) {
    rename();
}

AudioConfiguration::AudioConfiguration(const AudioConfiguration&) = default;
AudioConfiguration& AudioConfiguration::operator=(const AudioConfiguration&) = default;
AudioConfiguration::~AudioConfiguration() = default;

int AudioConfiguration::getChannels() const { return channels; }

void AudioConfiguration::setChannels(int newChannels) {
    channels = newChannels;
    rename();
}

int AudioConfiguration::getBitsPerSample() const { return bitsPerSample; }

void AudioConfiguration::setBitsPerSample(int newBitsPerSample) {
    bitsPerSample = newBitsPerSample;
    rename();
}

int AudioConfiguration::getSampleRate() const { return sampleRate; }

void AudioConfiguration::setSampleRate(int newSampleRate) {
    sampleRate = newSampleRate;
    rename();
}

bool AudioConfiguration::isEqual(const AudioConfiguration* other) const {
    return other && channels == other->channels && bitsPerSample == other->bitsPerSample &&
           sampleRate == other->sampleRate;
}

// Hosts keep the names in files and command lines: the pattern never changes.
void AudioConfiguration::rename() {
    setName(Utils::Format("AUCH%BPS%SR%") % channels % bitsPerSample % sampleRate);
}

} // namespace Zentara
