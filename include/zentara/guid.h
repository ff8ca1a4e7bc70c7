#pragma once

#include <cstdint>
#include <cstring>

#if defined(_WIN32)
#include <guiddef.h>
#else
/// The platform's 16-byte identifier, in the registry form Data1-Data2-Data3-Data4[0..1]-Data4[2..7]; the three
/// numbers in the machine's byte order. A plain aggregate, so that it crosses C functions by value.
struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
#endif

static_assert(sizeof(GUID) == 16, "a GUID is 16 bytes");

namespace Zentara {

/// True when both 64-bit halves are equal. Safe.
[[nodiscard]] inline bool guidEquals(const GUID& left, const GUID& right) noexcept {
    std::uint64_t leftHalves[2];
    std::uint64_t rightHalves[2];
    std::memcpy(leftHalves, &left, sizeof leftHalves);
    std::memcpy(rightHalves, &right, sizeof rightHalves);
    return leftHalves[0] == rightHalves[0] && leftHalves[1] == rightHalves[1];
}

} // namespace Zentara
