#include <zentara/depth_configuration.h>

#include <zentara/utils/format.h>

namespace Zentara {

DepthConfiguration::DepthConfiguration() : DepthBaseConfiguration({}, ConfigurationType_DEPTH) { rename(); }

DepthConfiguration::DepthConfiguration(FrameFormat frameFormat, int rate, DepthNode::CameraMode cameraMode,
                                       bool marksSaturation, std::int16_t phaseDelay)
    : DepthBaseConfiguration(frameFormat, rate, phaseDelay, {}, ConfigurationType_DEPTH), mode(cameraMode),
      saturation(marksSaturation) {
    rename();
}

DepthConfiguration::DepthConfiguration(const DepthConfiguration&) = default;
DepthConfiguration& DepthConfiguration::operator=(const DepthConfiguration&) = default;
DepthConfiguration::~DepthConfiguration() = default;

void DepthConfiguration::setFrameFormat(FrameFormat newFormat) {
    DepthBaseConfiguration::setFrameFormat(newFormat);
    rename();
}

void DepthConfiguration::setFramerate(int newFrameRate) {
    DepthBaseConfiguration::setFramerate(newFrameRate);
    rename();
}

DepthNode::CameraMode DepthConfiguration::getCameraMode() const { return mode; }

void DepthConfiguration::setCameraMode(DepthNode::CameraMode newMode) {
    mode = newMode;
    rename();
}

bool DepthConfiguration::getSaturation() const { return saturation; }

void DepthConfiguration::setSaturation(bool newSaturation) {
    saturation = newSaturation;
    rename();
}

void DepthConfiguration::rename() {
    // The saturation is a number in the name; as a bool it would print as a word. Hosts keep the names in files and
    // command lines: the pattern never changes.
    setName(Utils::Format("DEFF%FR%CM%S%") % getFrameFormat() % getFramerate() % mode % (saturation ? 1 : 0));
}

} // namespace Zentara
