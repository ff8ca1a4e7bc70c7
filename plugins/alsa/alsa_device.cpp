#include "plugins/alsa/alsa_device.h"

#include <utility>

#include <zentara/audio_configuration.h>
#include <zentara/core/guids.h>
#include <zentara/io/audio_requests.h>
#include <zentara/io/streaming_requests.h>
#include <zentara/utils/format.h>

#include "plugins/linux/warn.h"

namespace Zentara::Alsa {

// Inside the device's own operations "Plugin" is the base class, so the exceptions are named here.
using Utils::Format;
using Utils::Threading::AutoLock;
using Zentara::Plugin::ArgumentPluginException;
using Zentara::Plugin::InvalidOperationPluginException;
using Zentara::Plugin::NotSupportedPluginException;

namespace {

void requireLevel(float level) {
    if (!(level >= 0 && level <= 1))
        throw ArgumentPluginException(Format("the level of a microphone is from 0 to 1, not %") % level);
}

} // namespace

AlsaDevice::AlsaDevice() : KernelDevice(Core::Guids::ALSAAUDIO_IMPL, defaultPath) {}

AlsaDevice::~AlsaDevice() { letGo(); }

void AlsaDevice::initialize(NodeEvent* event, Core::DescriptorStoreRO* store) {
    AudioDeviceInterface::initialize(event, store);
    attach(event->path, event->path); // a card is silent for itself
}

void AlsaDevice::open(IO::deviceRequest* request) {
    openWith(request, "open the microphone", [place = path] { return std::make_shared<Microphone>(place); });
}

/// A microphone and its stream are one.
std::shared_ptr<void> AlsaDevice::endStream() noexcept {
    if (opened)
        opened->end();
    return nullptr;
}

void AlsaDevice::disableStreaming(IO::disableRequest* request) {
    const auto present = require("stop the stream");
    present->end();
    call(request, "stop the stream", [own = present] { own->stop(); });
    if (present->overruns() != 0)
        Linux::warn(Format("%: samples were lost % times, for they were not fetched in time") % path %
                    present->overruns());
}

ReadBufferStatus AlsaDevice::readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) {
    if (buffer == nullptr || timestamp == nullptr || length == nullptr)
        throw ArgumentPluginException("readBuffer: a pointer is null");
    const AutoLock reader(reading);
    const auto present = openedOrNull();
    return present ? present->read(buffer, size, timestamp, length) : ReadBufferStatus_NOT_STREAMING;
}

void AlsaDevice::getDefaultConfiguration(IO::getAudioDefaultConfigurationsRequest* request) {
    const SoundMode usual =
        call(request, "ask for the mode", [own = require("ask for the mode")] { return own->usualMode(); });
    const auto& mode = request->getConfiguration();
    mode->setChannels(static_cast<int>(usual.channels));
    mode->setBitsPerSample(static_cast<int>(usual.bits));
    mode->setSampleRate(static_cast<int>(usual.rate));
}

void AlsaDevice::enableStreaming(IO::enableAudioRequest* request) {
    const auto& wanted = request->getConfiguration();
    if (!wanted)
        throw ArgumentPluginException("enableAudio: the configuration is null");
    requireLevel(request->getLevel());
    const auto present = require("start the stream");
    if (present->runs())
        throw InvalidOperationPluginException(
            Format("%: cannot start a stream: the device streams already; disable it first") % path);
    const SoundMode mode{static_cast<unsigned>(wanted->getChannels()),
                         static_cast<unsigned>(wanted->getBitsPerSample()),
                         static_cast<unsigned>(wanted->getSampleRate())};
    call(request, "start the stream",
         [own = present, mode, level = request->getLevel(), mute = request->getMute(), place = path] {
             const bool leveled = own->setLevel(level);
             const bool muted = own->setMute(mute);
             if (!leveled || (mute && !muted))
                 Linux::warn(Format("%: the card has no control of its input's level, or none to mute it") %
                             place);
             own->start(mode);
         });
}

void AlsaDevice::setInputMixerLevel(IO::setAudioLevelRequest* request) {
    requireLevel(request->getLevel());
    if (!call(request, "set the level",
              [own = require("set the level"), level = request->getLevel()] { return own->setLevel(level); }))
        throw NotSupportedPluginException(Format("%: the card has no control of its input's level") % path);
}

void AlsaDevice::setMute(IO::setAudioMuteRequest* request) {
    if (!call(request, "mute",
              [own = require("mute"), mute = request->getMute()] { return own->setMute(mute); }))
        throw NotSupportedPluginException(Format("%: the card has no control that mutes its input") % path);
}

} // namespace Zentara::Alsa
