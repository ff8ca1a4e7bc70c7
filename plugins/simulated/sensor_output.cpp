#include "plugins/simulated/sensor_output.h"

#include "plugins/descriptions/wire.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

constexpr std::uint32_t usualMegahertz = 20;

bool fits(const RegionOfInterestInternal& region) {
    return region.width > 0 && region.height > 0 && region.x < frameWidth && region.y < frameHeight &&
           region.width <= frameWidth - region.x && region.height <= frameHeight - region.y;
}

RegionOfInterestInternal readRegion(const Port& port) {
    constexpr std::uint8_t first = registerOf(ParameterType_REGION_OF_INTEREST);
    const RegionOfInterestInternal region{port.tofRegister(first), port.tofRegister(first + 1),
                                          port.tofRegister(first + 2), port.tofRegister(first + 3)};
    return fits(region) ? region : RegionOfInterestInternal{0, 0, frameWidth, frameHeight};
}

} // namespace

SensorOutput SensorOutput::read(const Port* port) {
    SensorOutput output;
    output.region = {0, 0, frameWidth, frameHeight};
    output.header.megahertz = usualMegahertz;
    if (port == nullptr)
        return output;
    output.raw = (port->tofRegister(outputRegister) & 1) != 0;
    if (port->tofRegister(signatureRegister) != signature) // the others have no values yet
        return output;
    const auto mode = port->tofRegister(registerOf(ParameterType_RAW_OUTPUT_MODE));
    if (rawFrameBytes(static_cast<RawOutputMode>(mode)) != 0)
        output.header.mode = static_cast<RawOutputMode>(mode);
    if (const auto megahertz = port->tofRegister(registerOf(ParameterType_FLOAT_2)))
        output.header.megahertz = megahertz;
    output.dark = port->tofRegister(registerOf(ParameterType_BOOL_7)) == 0;
    output.region = readRegion(*port);
    return output;
}

} // namespace Zentara::Simulated
