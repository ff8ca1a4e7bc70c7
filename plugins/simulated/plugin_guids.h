#pragma once

#include <zentara/core/guids.h>

namespace Zentara::Simulated {

// The plug-ins that know the simulated cameras. All others work over any device.
constexpr GUID enumeratorGuid = Core::Guids::MOCK_ENUMERATOR_IMPL;
constexpr GUID videoDeviceGuid = Core::Guids::MOCKVIDEODEVICE_IMPL;
constexpr GUID audioDeviceGuid = Core::Guids::MOCKAUDIODEVICE_IMPL;

} // namespace Zentara::Simulated
