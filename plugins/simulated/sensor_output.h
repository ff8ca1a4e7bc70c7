#pragma once

#include <zentara/region_of_interest_internal.h>

#include "plugins/simulated/port.h"
#include "plugins/simulated/raw_frame.h"

namespace Zentara::Simulated {

/// What the registers of the time-of-flight controller make of the picture. Until a host has started the camera's
/// parameters, only the raw output is looked at.
struct SensorOutput {
    bool raw = false;
    Cameras::RawHeader header;
    bool dark = false; ///< the illumination is switched off
    RegionOfInterestInternal region;

    /// \param port null for a camera without one
    [[nodiscard]] static SensorOutput read(const Port* port);
};

} // namespace Zentara::Simulated
