#include <zentara/color_configuration.h>

#include <zentara/utils/format.h>

namespace Zentara {

ColorConfiguration::ColorConfiguration()
    : ColorConfiguration(FrameFormat_NONE, 0, PowerLineFrequency_DISABLED, CompressionType_NONE) {}

ColorConfiguration::ColorConfiguration(FrameFormat frameFormat, int rate, PowerLineFrequency mains,
                                       CompressionType compressionType)
    : Configuration(ConfigurationType_COLOR, {}), format(frameFormat), frameRate(rate), frequency(mains),
      compression(compressionType) {
    rename();
}

ColorConfiguration::ColorConfiguration(const ColorConfiguration&) = default;
ColorConfiguration& ColorConfiguration::operator=(const ColorConfiguration&) = default;
ColorConfiguration::~ColorConfiguration() = default;

FrameFormat ColorConfiguration::getFrameFormat() const { return format; }

void ColorConfiguration::setFrameFormat(FrameFormat newFormat) {
    format = newFormat;
    rename();
}

int ColorConfiguration::getFramerate() const { return frameRate; }

void ColorConfiguration::setFramerate(int newFrameRate) {
    frameRate = newFrameRate;
    rename();
}

PowerLineFrequency ColorConfiguration::getPowerLineFrequency() const { return frequency; }

void ColorConfiguration::setPowerLineFrequency(PowerLineFrequency newFrequency) {
    frequency = newFrequency;
    rename();
}

CompressionType ColorConfiguration::getCompression() const { return compression; }

void ColorConfiguration::setCompression(CompressionType newCompression) {
    compression = newCompression;
    rename();
}

bool ColorConfiguration::isEqual(const ColorConfiguration* other) const {
    return other && format == other->format && frameRate == other->frameRate &&
           frequency == other->frequency && compression == other->compression;
}

// Enumerations print as their numbers. Hosts keep the names in files and command lines: the pattern never changes.
void ColorConfiguration::rename() {
    setName(Utils::Format("COFF%FR%PLF%COMP%") % format % frameRate % frequency % compression);
}

} // namespace Zentara
