#pragma once

#include <vector>

#include <zentara/host/extension_unit.h>

namespace Zentara::IO {
class VideoDeviceProxy;
}

namespace Zentara::Host {

/// Asks a device for its camera's extension units, and each of their controls for all that it tells. A control that does
/// not answer says why; one that a time-out has hit ends the asking.
/// \throws Failure, Unsupported for a device that has no list of them
[[nodiscard]] std::vector<ExtensionUnit> readExtensionUnits(IO::VideoDeviceProxy& device);

} // namespace Zentara::Host
