#include <zentara/io/calibration_data.h>

#include <array>
#include <cstddef>

#include <zentara/depth_configuration.h>

namespace Zentara::IO {

namespace {

// In the order in which the delays of one mode come.
constexpr std::array<std::uint32_t, 4> frameRates = {25, 30, 50, 60};
constexpr std::uint32_t modeCount = 2;

} // namespace

CalibrationData::CalibrationData(short mode0, short mode1)
    : CalibrationData({mode0, mode0, mode0, mode0, mode1, mode1, mode1, mode1}) {}

CalibrationData::CalibrationData(std::vector<short> delays) {
    // Exactly eight are two modes' worth; any other number is one mode's, which serves both.
    const bool eachModeHasItsOwn = delays.size() == modeCount * frameRates.size();
    delays.resize(modeCount * frameRates.size());
    for (std::uint32_t mode = 0; mode < modeCount; ++mode) {
        const std::size_t first = eachModeHasItsOwn ? mode * frameRates.size() : 0;
        for (std::size_t i = 0; i < frameRates.size(); ++i)
            elements.push_back({frameRates[i], mode, delays[first + i]});
    }
}

short CalibrationData::getPhaseDelay(Utils::SmartPtr<DepthBaseConfiguration> configuration) const {
    const auto* depth = dynamic_cast<const DepthConfiguration*>(configuration.get());
    if (!depth)
        return 0;
    const auto frameRate = static_cast<std::uint32_t>(depth->getFramerate());
    const auto mode = static_cast<std::uint32_t>(depth->getCameraMode());
    for (const CalibrationElement& element : elements) {
        if (element.frameRate == frameRate && element.cameraMode == mode)
            return element.phaseDelay;
    }
    return 0;
}

} // namespace Zentara::IO
