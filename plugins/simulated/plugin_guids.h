#pragma once

#include <zentara/core/guids.h>

#include "plugins/simulated/parameters/back_end_guid.h"

namespace Zentara::Simulated {

// The plug-ins of the simulated cameras, in the order in which a host meets them. The parameter back-end,
// `parameterBackEndGuid`, is found through the store.
constexpr GUID descriptorStoreGuid = Core::Guids::KV_DESCRIPTOR_STORE;
constexpr GUID enumeratorGuid = Core::Guids::MOCK_ENUMERATOR_IMPL;
constexpr GUID depthNodeGuid = Core::Guids::MOCKDEPTH_IMPL;
constexpr GUID colorNodeGuid = {0x3C1F6E0D, 0x5B5E, 0x4E52, {0xA6, 0x17, 0x0B, 0x7E, 0x94, 0x2D, 0xC3, 0x58}};
constexpr GUID audioNodeGuid = {0x8E04D7B2, 0x91CA, 0x4A36, {0xB8, 0x43, 0x6F, 0x25, 0xD0, 0x1C, 0x7A, 0xE9}};
constexpr GUID videoDeviceGuid = Core::Guids::MOCKVIDEODEVICE_IMPL;
constexpr GUID audioDeviceGuid = Core::Guids::MOCKAUDIODEVICE_IMPL;

} // namespace Zentara::Simulated
