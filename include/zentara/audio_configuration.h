#pragma once

#include <zentara/configuration.h>

namespace Zentara {

/// An audio mode, named for example "AUCH2BPS16SR44100". Separate.
class ZENTARA_API AudioConfiguration : public Configuration {
public:
    /// All fields 0.
    AudioConfiguration();

    /// \param bitsPerSample bits of one channel's sample
    /// \param sampleRate samples a second
    AudioConfiguration(int channels, int bitsPerSample, int sampleRate);
    AudioConfiguration(const AudioConfiguration&);
    AudioConfiguration& operator=(const AudioConfiguration&);

    [[nodiscard]] int getChannels() const;
    void setChannels(int newChannels);
    [[nodiscard]] int getBitsPerSample() const;
    void setBitsPerSample(int newBitsPerSample);
    [[nodiscard]] int getSampleRate() const;
    void setSampleRate(int newSampleRate);

    /// True when the three fields are equal; false for null.
    [[nodiscard]] bool isEqual(const AudioConfiguration* other) const;

protected:
    ~AudioConfiguration() override;

private:
    void rename();

    int channels = 0;
    int bitsPerSample = 0;
    int sampleRate = 0;
};

} // namespace Zentara
