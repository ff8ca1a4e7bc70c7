#include "plugins/alsa/microphone.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <memory>
#include <poll.h>
#include <unistd.h>
#include <utility>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

namespace Zentara::Alsa {

using Utils::Format;
using Utils::Threading::AutoLock;

namespace {

constexpr unsigned blocksPerSecond = 100;
constexpr unsigned bufferedBlocks = 50;       // half a second: then samples are lost
constexpr std::int64_t longestRead = 900'000; // microseconds
constexpr long evenlyDivided = 2400;          // hundredths of a decibel
constexpr double cubeRoot = 6000;             // of them for ten times as much; an amplitude has 2000

using Parameters = std::unique_ptr<snd_pcm_hw_params_t, decltype(&snd_pcm_hw_params_free)>;
using Settings = std::unique_ptr<snd_pcm_sw_params_t, decltype(&snd_pcm_sw_params_free)>;

Parameters makeParameters() {
    snd_pcm_hw_params_t* made = nullptr;
    if (snd_pcm_hw_params_malloc(&made) < 0)
        throw std::bad_alloc();
    return {made, &snd_pcm_hw_params_free};
}

snd_pcm_format_t formatOf(unsigned bits) {
    switch (bits) {
    case 8:
        return SND_PCM_FORMAT_U8;
    case 16:
        return SND_PCM_FORMAT_S16;
    case 24:
        return SND_PCM_FORMAT_S24_3LE;
    case 32:
        return SND_PCM_FORMAT_S32;
    default:
        return SND_PCM_FORMAT_UNKNOWN;
    }
}

std::string textOf(const SoundMode& mode) {
    return Format("% channels of % bits at % Hz") % mode.channels % mode.bits % mode.rate;
}

/// The library says that there is no such card, of one whose files this user may not open.
bool isForbidden(const std::string& name) {
    unsigned card = 0;
    return std::sscanf(name.c_str(), "hw:%u", &card) == 1 &&
           ::access(("/dev/snd/controlC" + std::to_string(card)).c_str(), R_OK | W_OK) != 0 &&
           errno == EACCES;
}

snd_pcm_t* opened(const std::string& name) {
    snd_pcm_t* input = nullptr;
    int result = snd_pcm_open(&input, name.c_str(), SND_PCM_STREAM_CAPTURE, SND_PCM_NONBLOCK);
    if (result >= 0)
        return input;
    if (isForbidden(name))
        result = -EACCES;
    const std::string text = Format("%: cannot open the microphone: %") % name % snd_strerror(result);
    if (result == -EACCES || result == -EPERM)
        throw Plugin::UnauthorizedAccessPluginException(text);
    if (result == -EBUSY)
        throw Plugin::InvalidOperationPluginException(text + "; another program listens");
    throw Plugin::IOPluginException(text);
}

/// "hw:1" of "hw:1,0".
std::string cardOf(const std::string& name) { return name.substr(0, name.find(',')); }

/// Where a level lies between two levels in hundredths of a decibel. A short range is divided evenly; in a wide one, whose
/// lower half nobody hears, the level is the cube root of the amplitude, which is about how loud it sounds.
long decibelsOf(double level, long least, long most) {
    if (most - least <= evenlyDivided)
        return least + std::lround(level * static_cast<double>(most - least));
    const double quietest = std::pow(10, static_cast<double>(least - most) / cubeRoot);
    const double root = quietest + level * (1 - quietest);
    return root > quietest ? most + std::lround(cubeRoot * std::log10(root)) : least;
}

bool setCaptureLevel(snd_mixer_elem_t* control, float level) {
    long least = 0;
    long most = 0;
    if (snd_mixer_selem_get_capture_dB_range(control, &least, &most) >= 0 && least < most)
        return snd_mixer_selem_set_capture_dB_all(control, decibelsOf(level, least, most), 0) >= 0;
    return snd_mixer_selem_get_capture_volume_range(control, &least, &most) >= 0 &&
           snd_mixer_selem_set_capture_volume_all(
               control, least + std::lround(level * static_cast<float>(most - least))) >= 0;
}

} // namespace

Microphone::Microphone(std::string card) : name(std::move(card)), input(opened(name)) { wake.set(); }

Microphone::~Microphone() {
    stop();
    snd_pcm_close(input);
}

void Microphone::fail(const char* what, int error) const {
    throw Plugin::IOPluginException(Format("%: cannot %: %") % name % what % snd_strerror(error));
}

void Microphone::require(int result, const char* what) const {
    if (result < 0)
        fail(what, result);
}

SoundMode Microphone::usualMode() const {
    const Parameters all = makeParameters();
    require(snd_pcm_hw_params_any(input, all.get()), "ask for the modes");
    SoundMode usual;
    for (const unsigned bits : {16U, 24U, 32U, 8U}) {
        if (usual.bits == 0 && snd_pcm_hw_params_test_format(input, all.get(), formatOf(bits)) == 0)
            usual.bits = bits;
    }
    require(snd_pcm_hw_params_set_format(input, all.get(), formatOf(usual.bits)), "find a format of samples");
    usual.channels = 2;
    require(snd_pcm_hw_params_set_channels_near(input, all.get(), &usual.channels), "ask for the channels");
    usual.rate = 48000;
    require(snd_pcm_hw_params_set_rate_near(input, all.get(), &usual.rate, nullptr),
            "ask for the sample rate");
    return usual;
}

void Microphone::start(const SoundMode& wanted) {
    stop();
    const AutoLock hold(turn);
    const Parameters chosen = makeParameters();
    require(snd_pcm_hw_params_any(input, chosen.get()), "ask for the modes");
    snd_pcm_uframes_t block = wanted.rate / blocksPerSecond;
    snd_pcm_uframes_t all = block * bufferedBlocks;
    const bool fits = formatOf(wanted.bits) != SND_PCM_FORMAT_UNKNOWN && block > 0 &&
                      snd_pcm_hw_params_set_access(input, chosen.get(), SND_PCM_ACCESS_RW_INTERLEAVED) == 0 &&
                      snd_pcm_hw_params_set_format(input, chosen.get(), formatOf(wanted.bits)) == 0 &&
                      snd_pcm_hw_params_set_channels(input, chosen.get(), wanted.channels) == 0 &&
                      snd_pcm_hw_params_set_rate(input, chosen.get(), wanted.rate, 0) == 0;
    if (!fits)
        throw Plugin::ConfigurationPluginException(Format("%: the microphone does not have %; it has %") %
                                                   name % textOf(wanted) % textOf(usualMode()));
    require(snd_pcm_hw_params_set_period_size_near(input, chosen.get(), &block, nullptr),
            "set the length of blocks");
    require(snd_pcm_hw_params_set_buffer_size_near(input, chosen.get(), &all),
            "set the length of its memory");
    require(snd_pcm_hw_params(input, chosen.get()), "set the mode");

    snd_pcm_sw_params_t* made = nullptr;
    if (snd_pcm_sw_params_malloc(&made) < 0)
        throw std::bad_alloc();
    const Settings settings(made, &snd_pcm_sw_params_free);
    require(snd_pcm_sw_params_current(input, made), "ask for its settings");
    snd_pcm_sw_params_set_avail_min(input, made, block);
    snd_pcm_sw_params_set_tstamp_mode(input, made, SND_PCM_TSTAMP_ENABLE);
    snd_pcm_sw_params_set_tstamp_type(input, made, SND_PCM_TSTAMP_TYPE_MONOTONIC);
    require(snd_pcm_sw_params(input, made), "set when it wakes its reader");
    require(snd_pcm_prepare(input), "prepare");
    require(snd_pcm_start(input), "start");
    mode = wanted;
    blockFrames = block;
    lost = 0;
    wake.reset();
}

void Microphone::stop() noexcept {
    end();
    const AutoLock hold(turn);
    if (std::exchange(blockFrames, 0) != 0)
        static_cast<void>(snd_pcm_drop(input));
}

bool Microphone::runs() const {
    const AutoLock hold(turn);
    return blockFrames != 0;
}

unsigned Microphone::overruns() const {
    const AutoLock hold(turn);
    return lost;
}

/// Waits for samples. \return OK when there may be some
ReadBufferStatus Microphone::await(int milliseconds) {
    const int count = snd_pcm_poll_descriptors_count(input);
    std::vector<pollfd> files(static_cast<std::size_t>(std::max(0, count)) + 1);
    snd_pcm_poll_descriptors(input, files.data() + 1, static_cast<unsigned>(files.size() - 1));
    files[0] = {wake.file(), POLLIN, 0};
    if (::poll(files.data(), files.size(), milliseconds) <= 0)
        return ReadBufferStatus_TIMEOUT;
    return files[0].revents != 0 ? ReadBufferStatus_NOT_STREAMING : ReadBufferStatus_OK;
}

/// When the sample was taken that is read next.
std::int64_t Microphone::firstSampleMicros() const {
    snd_pcm_uframes_t waiting = 0;
    snd_htimestamp_t at{};
    if (snd_pcm_htimestamp(input, &waiting, &at) < 0 || (at.tv_sec == 0 && at.tv_nsec == 0))
        return Utils::Clock::nowMicros() -
               static_cast<std::int64_t>(blockFrames) * 1'000'000 / static_cast<std::int64_t>(mode.rate);
    return std::int64_t{at.tv_sec} * 1'000'000 + at.tv_nsec / 1000 -
           static_cast<std::int64_t>(waiting) * 1'000'000 / static_cast<std::int64_t>(mode.rate);
}

/// After samples were lost, or the machine has slept. \return false when the card has gone
bool Microphone::recover(int error) {
    if (error != -EPIPE && error != -ESTRPIPE)
        return false;
    ++lost;
    return snd_pcm_prepare(input) >= 0 && snd_pcm_start(input) >= 0;
}

ReadBufferStatus Microphone::read(void* buffer, int size, std::int64_t* timestamp, int* length) {
    const AutoLock hold(turn);
    if (blockFrames == 0)
        return ReadBufferStatus_NOT_STREAMING;
    *length = static_cast<int>(blockFrames * mode.channels * (mode.bits / 8));
    if (size < *length)
        return ReadBufferStatus_TOO_SMALL;
    const std::int64_t end = Utils::Clock::nowMicros() + longestRead;
    for (;;) {
        const std::int64_t left = end - Utils::Clock::nowMicros();
        if (left <= 0)
            return ReadBufferStatus_TIMEOUT;
        const ReadBufferStatus ready = await(static_cast<int>(left / 1000 + 1));
        if (ready != ReadBufferStatus_OK)
            return ready;
        const snd_pcm_sframes_t waiting = snd_pcm_avail(input);
        if (waiting >= 0 && static_cast<snd_pcm_uframes_t>(waiting) < blockFrames) {
            pollfd pause{wake.file(), POLLIN, 0}; // a card that is always ready must not be asked without end
            static_cast<void>(::poll(&pause, 1, 1));
            continue;
        }
        *timestamp = firstSampleMicros();
        const snd_pcm_sframes_t got = waiting < 0 ? waiting : snd_pcm_readi(input, buffer, blockFrames);
        if (got == static_cast<snd_pcm_sframes_t>(blockFrames))
            return ReadBufferStatus_OK;
        if (got == -EAGAIN)
            continue;
        if (got >= 0)
            return ReadBufferStatus_FAILED; // a block is never in two pieces
        if (!recover(static_cast<int>(got)))
            return got == -EIO ? ReadBufferStatus_FAILED : ReadBufferStatus_DISCONNECTED;
    }
}

/// Does something with the card's input control.
template<typename Set>
bool Microphone::mix(Set set) const {
    snd_mixer_t* opening = nullptr;
    if (snd_mixer_open(&opening, 0) < 0)
        return false;
    const std::unique_ptr<snd_mixer_t, decltype(&snd_mixer_close)> mixer(opening, &snd_mixer_close);
    if (snd_mixer_attach(opening, cardOf(name).c_str()) < 0 ||
        snd_mixer_selem_register(opening, nullptr, nullptr) < 0 || snd_mixer_load(opening) < 0)
        return false;
    bool done = false;
    for (snd_mixer_elem_t* control = snd_mixer_first_elem(opening); control != nullptr;
         control = snd_mixer_elem_next(control))
        done = set(control) || done;
    return done;
}

bool Microphone::setLevel(float level) const {
    return mix([level](snd_mixer_elem_t* control) {
        return snd_mixer_selem_has_capture_volume(control) != 0 && setCaptureLevel(control, level);
    });
}

bool Microphone::setMute(bool mute) const {
    return mix([mute](snd_mixer_elem_t* control) {
        return snd_mixer_selem_has_capture_switch(control) != 0 &&
               snd_mixer_selem_set_capture_switch_all(control, mute ? 0 : 1) >= 0;
    });
}

} // namespace Zentara::Alsa
