#pragma once

#include <cstdint>

namespace Zentara {

/// How the slow drift of a depth camera's phase is compensated: two words that the library carries and does not
/// interpret. They stay with the host: no encoding has a place for them. A copyable value. Separate.
struct DriftCompensation {
    DriftCompensation() = default;
    DriftCompensation(std::int32_t compensationKind, std::int32_t compensationValue)
        : kind(compensationKind), value(compensationValue) {}

    std::int32_t kind = -1; ///< the method; -1: none
    std::int32_t value = 0; ///< its parameter, in the method's unit

    friend bool operator==(const DriftCompensation&, const DriftCompensation&) = default;
};

} // namespace Zentara
