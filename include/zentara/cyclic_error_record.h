#pragma once

#include <cstdint>
#include <vector>

namespace Zentara {

/// The cyclic-error correction of one camera mode as a descriptor store keeps it.
struct CyclicErrorRecord {
    std::int32_t algorithm = 0; ///< 0: none
    std::vector<float> parameters;

    friend bool operator==(const CyclicErrorRecord&, const CyclicErrorRecord&) = default;
};

} // namespace Zentara
