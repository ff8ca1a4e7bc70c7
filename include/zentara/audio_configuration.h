#pragma once

#include <zentara/configuration.h>

namespace Zentara {

/// An audio mode, named "AUCH", channels, "BPS", bits per sample, "SR", sampling rate: for example
/// "AUCH2BPS16SR44100". Every setter derives the name anew, and none checks its number: which modes there are,
/// the device knows. Its streams hold the channels' samples in turn (interleaved). Separate.
class ZENTARA_API AudioConfiguration : public Configuration {
public:
    /// All fields 0.
    AudioConfiguration();

    /// \param channels samples that are taken at one time: 1 is mono, 2 stereo
    /// \param bitsPerSample bits of one channel's sample
    /// \param sampleRate samples a second, of each channel
    AudioConfiguration(int channels, int bitsPerSample, int sampleRate);
    AudioConfiguration(const AudioConfiguration&);
    AudioConfiguration& operator=(const AudioConfiguration&);

    [[nodiscard]] int getChannels() const;
    void setChannels(int newChannels);
    [[nodiscard]] int getBitsPerSample() const;
    void setBitsPerSample(int newBitsPerSample);
    /// Samples a second, of each channel.
    [[nodiscard]] int getSampleRate() const;
    void setSampleRate(int newSampleRate);

    /// True when the three fields are equal, whatever the names; false for null.
    [[nodiscard]] bool isEqual(const AudioConfiguration* other) const;

protected:
    ~AudioConfiguration() override;

private:
    void rename();

    int channels = 0;
    int bitsPerSample = 0;
    int sampleRate = 0; ///< hertz
};

} // namespace Zentara
