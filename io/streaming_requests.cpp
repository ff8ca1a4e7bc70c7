#include <zentara/io/streaming_requests.h>

#include <utility>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/depth_base_configuration.h>

namespace Zentara::IO {

enableDepthRequest::enableDepthRequest(AVDeviceInterface* device,
                                       Utils::SmartPtr<DepthBaseConfiguration> depthMode)
    : deviceRequest(device, RequestType_ENABLE_DEPTH), configuration(std::move(depthMode)) {}
enableDepthRequest::~enableDepthRequest() = default;

const Utils::SmartPtr<DepthBaseConfiguration>& enableDepthRequest::getConfiguration() const {
    return configuration;
}

enableColorRequest::enableColorRequest(AVDeviceInterface* device,
                                       Utils::SmartPtr<ColorConfiguration> colorMode, CameraControls settings)
    : deviceRequest(device, RequestType_ENABLE_COLOR), configuration(std::move(colorMode)),
      controls(std::move(settings)) {}
enableColorRequest::~enableColorRequest() = default;

const Utils::SmartPtr<ColorConfiguration>& enableColorRequest::getConfiguration() const {
    return configuration;
}
const CameraControls& enableColorRequest::getControls() const { return controls; }

enableAudioRequest::enableAudioRequest(AVDeviceInterface* device,
                                       Utils::SmartPtr<AudioConfiguration> audioMode, float inputLevel,
                                       bool muted)
    : deviceRequest(device, RequestType_ENABLE_AUDIO), configuration(std::move(audioMode)), level(inputLevel),
      mute(muted) {}
enableAudioRequest::~enableAudioRequest() = default;

const Utils::SmartPtr<AudioConfiguration>& enableAudioRequest::getConfiguration() const {
    return configuration;
}
float enableAudioRequest::getLevel() const { return level; }
bool enableAudioRequest::getMute() const { return mute; }

disableRequest::disableRequest(AVDeviceInterface* device, bool deviceFlag)
    : deviceRequest(device, RequestType_DISABLE), flag(deviceFlag) {}
disableRequest::~disableRequest() = default;

bool disableRequest::getFlag() const { return flag; }

pauseStreamingRequest::pauseStreamingRequest(AVDeviceInterface* device)
    : deviceRequest(device, RequestType_PauseStreaming) {}
pauseStreamingRequest::~pauseStreamingRequest() = default;

resumeStreamingRequest::resumeStreamingRequest(AVDeviceInterface* device)
    : deviceRequest(device, RequestType_ResumeStreaming) {}
resumeStreamingRequest::~resumeStreamingRequest() = default;

setDeviceRegionOfInterestRequest::setDeviceRegionOfInterestRequest(AVDeviceInterface* device,
                                                                   const RegionOfInterestInternal& newRegion)
    : deviceRequest(device, RequestType_RegionOfInterest), region(newRegion) {}
setDeviceRegionOfInterestRequest::~setDeviceRegionOfInterestRequest() = default;

const RegionOfInterestInternal& setDeviceRegionOfInterestRequest::getRegion() const { return region; }

setOutputFormatRequest::setOutputFormatRequest(AVDeviceInterface* device, OutputFormat newFormat)
    : deviceRequest(device, RequestType_OutputFormat), format(newFormat) {}
setOutputFormatRequest::~setOutputFormatRequest() = default;

setOutputFormatRequest::OutputFormat setOutputFormatRequest::getFormat() const { return format; }

} // namespace Zentara::IO
