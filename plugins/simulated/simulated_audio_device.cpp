#include "plugins/simulated/simulated_audio_device.h"

#include <array>
#include <cstring>

#include <zentara/audio_configuration.h>
#include <zentara/core/guids.h>
#include <zentara/io/audio_requests.h>
#include <zentara/io/streaming_requests.h>
#include <zentara/utils/format.h>

#include "plugins/descriptions/wire.h"
#include "plugins/simulated/faults.h"
#include "plugins/simulated/plugged_camera.h"
#include "plugins/simulated/settings.h"
#include "plugins/simulated/stream_clock.h"
#include "plugins/simulated/tone.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

// Inside the device's own operations "Plugin" is the base class, so the exceptions are named here.
using Utils::Format;
using Utils::Threading::AutoLock;
using Zentara::Plugin::ArgumentPluginException;
using Zentara::Plugin::ConfigurationPluginException;
using Zentara::Plugin::InvalidOperationPluginException;

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

struct SimulatedAudioDevice::Impl {
    explicit Impl(const Settings& settings) : faults(settings, Device::Audio) {}

    void requireOpen(Operation operation) ZENTARA_REQUIRES(lock) {
        if (!opened)
            throw InvalidOperationPluginException(Format("%: the device is closed; open it first") %
                                                  operationName(operation));
    }

    /// Becomes the microphones of the node's camera: its settings on top of the environment's.
    void plugIn(const NodeEvent& node) {
        const std::string own = camera.attach(node);
        if (own.empty())
            return;
        Settings settings = Settings::fromEnvironment();
        settings.add(own, node.parentPath);
        faults.rearm(settings);
    }

    void meet(Operation operation, IO::deviceRequest* request) {
        faults.meet(operation, request);
        camera.require(operationName(operation));
    }

    Faults faults;
    PluggedCamera camera;
    StreamClock clock{audioBlocksPerSecond, audioBlocksPerSecond};
    Utils::Threading::Mutex lock; ///< never held while waiting for a block
    bool opened ZENTARA_GUARDED_BY(lock) = false;
    float level ZENTARA_GUARDED_BY(lock) = 0.5F;
    bool muted ZENTARA_GUARDED_BY(lock) = false;
};

SimulatedAudioDevice::SimulatedAudioDevice()
    : AudioDeviceInterface(Core::Guids::MOCKAUDIODEVICE_IMPL),
      impl(std::make_unique<Impl>(Settings::fromEnvironment())) {
    impl->faults.meet(Operation::Create);
}

SimulatedAudioDevice::~SimulatedAudioDevice() = default;

void SimulatedAudioDevice::dispose() {
    impl->clock.stop();
    impl->faults.meet(Operation::Dispose);
    AudioDeviceInterface::dispose();
}

void SimulatedAudioDevice::initialize(NodeEvent* event, Core::DescriptorStoreRO* store) {
    impl->faults.meet(Operation::Initialize);
    AudioDeviceInterface::initialize(event, store);
    impl->plugIn(*event);
}

void SimulatedAudioDevice::threadInitialize() { impl->faults.meet(Operation::ThreadInitialize); }

void SimulatedAudioDevice::threadUninitialize() { impl->faults.meet(Operation::ThreadUninitialize); }

bool SimulatedAudioDevice::cancelIO() {
    return !impl->faults.refusesCancel() && (impl->faults.cancel() || impl->clock.cancel());
}

ReadBufferStatus SimulatedAudioDevice::readBuffer(void* buffer, int size, std::int64_t* timestamp,
                                                  int* length) {
    if (buffer == nullptr || timestamp == nullptr || length == nullptr)
        throw ArgumentPluginException("readBuffer: a pointer is null");
    impl->faults.meet(Operation::ReadBuffer);
    std::uint64_t number = 0;
    std::int64_t due = 0;
    const StreamClock::Turn turn = impl->clock.waitForNext(number, due);
    if (impl->camera.isGone())
        return ReadBufferStatus_DISCONNECTED;
    if (turn != StreamClock::Turn::Due)
        return statusOf(turn);
    *length = static_cast<int>(audioBlockBytes);
    if (size < *length)
        return ReadBufferStatus_TOO_SMALL;

    float level = 0.0F;
    {
        AutoLock hold(impl->lock);
        level = impl->muted ? 0.0F : impl->level;
    }
    std::array<std::int16_t, std::size_t{audioBlockFrames} * audioChannels>
        samples; // `buffer` may be unaligned
    Tone::fill(number * audioBlockFrames, audioBlockFrames, level, samples.data());
    std::memcpy(buffer, samples.data(), audioBlockBytes);
    *timestamp = due;
    return ReadBufferStatus_OK;
}

void SimulatedAudioDevice::open(IO::deviceRequest* request) {
    impl->meet(Operation::Open, request);
    AutoLock hold(impl->lock);
    if (impl->opened)
        throw InvalidOperationPluginException("open: the device is open already");
    impl->opened = true;
}

void SimulatedAudioDevice::close(IO::deviceRequest* request) {
    impl->faults.meet(Operation::Close, request);
    AutoLock hold(impl->lock);
    impl->requireOpen(Operation::Close);
    impl->clock.stop();
    impl->opened = false;
}

void SimulatedAudioDevice::disableStreaming(IO::disableRequest* request) {
    impl->faults.meet(Operation::Disable, request);
    AutoLock hold(impl->lock);
    impl->requireOpen(Operation::Disable);
    impl->clock.stop();
}

void SimulatedAudioDevice::getDefaultConfiguration(IO::getAudioDefaultConfigurationsRequest* request) {
    impl->meet(Operation::GetDefault, request);
    const auto& mode = request->getConfiguration();
    if (!mode)
        throw ArgumentPluginException("getDefault: the configuration is null");
    mode->setChannels(audioChannels);
    mode->setBitsPerSample(audioBitsPerSample);
    mode->setSampleRate(audioSampleRate);
}

void SimulatedAudioDevice::enableStreaming(IO::enableAudioRequest* request) {
    impl->meet(Operation::EnableAudio, request);
    checkMode(request->getConfiguration().get());
    checkLevel(Operation::EnableAudio, request->getLevel());
    AutoLock hold(impl->lock);
    impl->requireOpen(Operation::EnableAudio);
    if (impl->clock.running())
        throw InvalidOperationPluginException("enableAudio: the device is streaming; disable it first");
    impl->level = request->getLevel();
    impl->muted = request->getMute();
    impl->clock.start();
}

void SimulatedAudioDevice::setInputMixerLevel(IO::setAudioLevelRequest* request) {
    impl->meet(Operation::SetLevel, request);
    checkLevel(Operation::SetLevel, request->getLevel());
    AutoLock hold(impl->lock);
    impl->level = request->getLevel();
}

void SimulatedAudioDevice::setMute(IO::setAudioMuteRequest* request) {
    impl->meet(Operation::SetMute, request);
    AutoLock hold(impl->lock);
    impl->muted = request->getMute();
}

} // namespace Zentara::Simulated
