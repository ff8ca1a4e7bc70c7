#pragma once

#include <zentara/core/guids.h>

namespace Zentara::Cameras {

// The plug-ins that work over any device, in the order in which a host meets them.
constexpr GUID descriptorStoreGuid = Core::Guids::KV_DESCRIPTOR_STORE;
constexpr GUID depthNodeGuid = Core::Guids::MOCKDEPTH_IMPL;
constexpr GUID colorNodeGuid = {0x3C1F6E0D, 0x5B5E, 0x4E52, {0xA6, 0x17, 0x0B, 0x7E, 0x94, 0x2D, 0xC3, 0x58}};
constexpr GUID audioNodeGuid = {0x8E04D7B2, 0x91CA, 0x4A36, {0xB8, 0x43, 0x6F, 0x25, 0xD0, 0x1C, 0x7A, 0xE9}};
constexpr GUID z16DepthNodeGuid = {
    0x0D6A4B91, 0x2F5E, 0x4C07, {0x9E, 0x61, 0x3B, 0xD8, 0x72, 0x15, 0xAC, 0x40}};
// For devices that no description names.
constexpr GUID genericColorNodeGuid = Core::Guids::GENERICCOLOR_IMPL;
constexpr GUID genericAudioNodeGuid = Core::Guids::GENERICAUDIO_IMPL;
constexpr GUID genericDepthNodeGuid = {
    0x6A0F2D58, 0x93E1, 0x4B7C, {0x8D, 0x24, 0xC1, 0x5E, 0x70, 0xB9, 0x3A, 0xF6}};
/// The parameter back-end; a description names it.
constexpr GUID parameterBackEndGuid = {
    0x5AB2C0E4, 0x7C1D, 0x4F0B, {0x9B, 0x3E, 0x52, 0x61, 0xD8, 0x0A, 0x34, 0xF7}};

} // namespace Zentara::Cameras
