#pragma once

#include <zentara/guid.h>

namespace Zentara::Simulated {

/// The parameter back-end of the simulated cameras, for descriptions that name it.
constexpr GUID parameterBackEndGuid = {
    0x5AB2C0E4, 0x7C1D, 0x4F0B, {0x9B, 0x3E, 0x52, 0x61, 0xD8, 0x0A, 0x34, 0xF7}};

} // namespace Zentara::Simulated
