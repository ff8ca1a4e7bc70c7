#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <alsa/asoundlib.h>

#include <zentara/read_buffer_status.h>
#include <zentara/utils/mutex.h>

#include "plugins/linux/kernel.h"

namespace Zentara::Alsa {

/// A mode of a microphone.
struct SoundMode {
    unsigned channels = 0;
    unsigned bits = 0; ///< of one channel's sample
    unsigned rate = 0; ///< samples a second

    friend bool operator==(const SoundMode&, const SoundMode&) = default;
};

/// An open input of a sound card ("hw:1,0"). All but read() and end() is done on the device's own thread. read() delivers
/// blocks of 10 ms; when it comes too late the card has dropped samples, and it goes on with the newest.
class Microphone {
public:
    /// \throws Plugin::UnauthorizedAccessPluginException without permission, Plugin::InvalidOperationPluginException when
    ///         somebody else has it, Plugin::IOPluginException for all else
    explicit Microphone(std::string name);
    ~Microphone();
    Microphone(const Microphone&) = delete;
    Microphone& operator=(const Microphone&) = delete;

    /// 16 bits, two channels and 48000 Hz, or what it has that is nearest.
    [[nodiscard]] SoundMode usualMode() const;

    /// \throws Plugin::ConfigurationPluginException with its usual mode when it does not have that one
    void start(const SoundMode& mode);
    void stop() noexcept;
    [[nodiscard]] bool runs() const;

    /// As IO::AVDeviceInterface::readBuffer; the arguments are not null. One reader at a time.
    ReadBufferStatus read(void* buffer, int size, std::int64_t* timestamp, int* length);

    /// The reader leaves at once; then stop() may follow.
    void end() noexcept { wake.set(); }

    /// How often samples were lost since the start.
    [[nodiscard]] unsigned overruns() const;

    /// \param level from 0, the least that the card's mixer has, to 1, the most; between them about as loud as it sounds
    ///        where the mixer tells decibels (half of 60 dB is 15.6 below the most), else in even steps.
    /// \return false when it has no such thing
    [[nodiscard]] bool setLevel(float level) const;
    [[nodiscard]] bool setMute(bool mute) const;

private:
    template<typename Set>
    bool mix(Set set) const;
    [[noreturn]] void fail(const char* what, int error) const;
    void require(int result, const char* what) const;
    [[nodiscard]] ReadBufferStatus await(int milliseconds) ZENTARA_REQUIRES(turn);
    [[nodiscard]] std::int64_t firstSampleMicros() const ZENTARA_REQUIRES(turn);
    [[nodiscard]] bool recover(int error) ZENTARA_REQUIRES(turn);

    const std::string name;
    snd_pcm_t* const input;
    Linux::WakeUp wake; ///< set unless it runs

    mutable Utils::Threading::Mutex turn;    ///< the reader's
    SoundMode mode ZENTARA_GUARDED_BY(turn); ///< of the last start
    snd_pcm_uframes_t
        blockFrames ZENTARA_GUARDED_BY(turn) = 0; ///< samples a channel in a block; 0 unless it runs
    unsigned lost ZENTARA_GUARDED_BY(turn) = 0;   ///< overruns since then
};

} // namespace Zentara::Alsa
