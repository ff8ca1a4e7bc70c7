#include "plugins/simulated/simulated_audio_device.h"

#include <array>
#include <cstring>

#include <zentara/audio_configuration.h>
#include <zentara/core/guids.h>
#include <zentara/io/audio_requests.h>
#include <zentara/io/streaming_requests.h>
#include <zentara/utils/format.h>

#include "plugins/descriptions/wire.h"
#include "plugins/simulated/tone.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

// Inside the device's own operations "Plugin" is the base class, so the exceptions are named here.
using Utils::Format;
using Utils::Threading::AutoLock;
using Zentara::Plugin::ArgumentPluginException;
using Zentara::Plugin::ConfigurationPluginException;

void checkLevel(Operation operation, float level) {
    if (!(level >= 0.0F && level <= 1.0F))
        throw ArgumentPluginException(Format("%: the level must be 0 to 1, not %") %
                                      operationName(operation) % level);
}

void checkMode(const AudioConfiguration* mode) {
    if (mode == nullptr)
        throw ArgumentPluginException("enableAudio: the configuration is null");
    if (mode->getChannels() != audioChannels || mode->getBitsPerSample() != audioBitsPerSample ||
        mode->getSampleRate() != audioSampleRate)
        throw ConfigurationPluginException(
            Format("enableAudio: the microphones have no mode %; they offer % channels of % bits at % Hz") %
            mode->getName() % audioChannels % audioBitsPerSample % audioSampleRate);
}

} // namespace

SimulatedAudioDevice::SimulatedAudioDevice()
    : SimulatedDevice(Core::Guids::MOCKAUDIODEVICE_IMPL,
                      std::make_shared<Faults>(Settings::fromEnvironment(), Device::Audio),
                      audioBlocksPerSecond, audioBlocksPerSecond) {
    faults->meet(Operation::Create);
}

void SimulatedAudioDevice::initialize(NodeEvent* event, Core::DescriptorStoreRO* store) {
    faults->meet(Operation::Initialize);
    AudioDeviceInterface::initialize(event, store);
    if (const auto settings = settingsOf(*event, false))
        faults->rearm(*settings);
}

ReadBufferStatus SimulatedAudioDevice::readBuffer(void* buffer, int size, std::int64_t* timestamp,
                                                  int* length) {
    std::uint64_t number = 0;
    std::int64_t due = 0;
    const ReadBufferStatus status = waitForNext(buffer, timestamp, length, number, due);
    if (status != ReadBufferStatus_OK)
        return status;
    *length = static_cast<int>(audioBlockBytes);
    if (size < *length)
        return ReadBufferStatus_TOO_SMALL;

    float amplitude = 0.0F;
    {
        AutoLock hold(lock);
        amplitude = muted ? 0.0F : level;
    }
    std::array<std::int16_t, std::size_t{audioBlockFrames} * audioChannels>
        samples; // `buffer` may be unaligned
    Tone::fill(number * audioBlockFrames, audioBlockFrames, amplitude, samples.data());
    std::memcpy(buffer, samples.data(), audioBlockBytes);
    *timestamp = due;
    return ReadBufferStatus_OK;
}

void SimulatedAudioDevice::getDefaultConfiguration(IO::getAudioDefaultConfigurationsRequest* request) {
    meet(Operation::GetDefault, request);
    const auto& mode = request->getConfiguration();
    if (!mode)
        throw ArgumentPluginException("getDefault: the configuration is null");
    mode->setChannels(audioChannels);
    mode->setBitsPerSample(audioBitsPerSample);
    mode->setSampleRate(audioSampleRate);
}

void SimulatedAudioDevice::enableStreaming(IO::enableAudioRequest* request) {
    meet(Operation::EnableAudio, request);
    checkMode(request->getConfiguration().get());
    checkLevel(Operation::EnableAudio, request->getLevel());
    AutoLock hold(lock);
    requireOpen(Operation::EnableAudio);
    requireIdle(Operation::EnableAudio);
    level = request->getLevel();
    muted = request->getMute();
    clock.start();
}

void SimulatedAudioDevice::setInputMixerLevel(IO::setAudioLevelRequest* request) {
    meet(Operation::SetLevel, request);
    checkLevel(Operation::SetLevel, request->getLevel());
    AutoLock hold(lock);
    level = request->getLevel();
}

void SimulatedAudioDevice::setMute(IO::setAudioMuteRequest* request) {
    meet(Operation::SetMute, request);
    AutoLock hold(lock);
    muted = request->getMute();
}

} // namespace Zentara::Simulated
