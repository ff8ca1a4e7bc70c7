#include <zentara/io/audio_requests.h>

#include <utility>

#include <zentara/audio_configuration.h>

namespace Zentara::IO {

getAudioDefaultConfigurationsRequest::getAudioDefaultConfigurationsRequest(
    AVDeviceInterface* device, Utils::SmartPtr<AudioConfiguration> result)
    : deviceRequest(device, RequestType_GET_AUDIO_DEFAULT_CONFIGURATION), configuration(std::move(result)) {}
getAudioDefaultConfigurationsRequest::~getAudioDefaultConfigurationsRequest() = default;

const Utils::SmartPtr<AudioConfiguration>& getAudioDefaultConfigurationsRequest::getConfiguration() const {
    return configuration;
}

setAudioLevelRequest::setAudioLevelRequest(AVDeviceInterface* device, float newLevel)
    : deviceRequest(device, RequestType_SET_AUDIO_LEVEL), level(newLevel) {}
setAudioLevelRequest::~setAudioLevelRequest() = default;

float setAudioLevelRequest::getLevel() const { return level; }

setAudioMuteRequest::setAudioMuteRequest(AVDeviceInterface* device, bool muted)
    : deviceRequest(device, RequestType_SET_AUDIO_MUTE), mute(muted) {}
setAudioMuteRequest::~setAudioMuteRequest() = default;

bool setAudioMuteRequest::getMute() const { return mute; }

} // namespace Zentara::IO
