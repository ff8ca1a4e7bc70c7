#pragma once

#include <cstdint>
#include <vector>

namespace Zentara {

/// The cyclic-error correction of one camera mode as a descriptor store keeps it. A copyable value. Separate.
struct CyclicErrorRecord {
    std::int32_t algorithm = 0; ///< a `CorrectionAlgorithm`, or another number that the camera knows; 0: none
    /// Of algorithm 1: millimetres to add to the depth, the mean, then cosine and sine of each harmonic of the phase.
    std::vector<float> parameters;

    friend bool operator==(const CyclicErrorRecord&, const CyclicErrorRecord&) = default;
};

} // namespace Zentara
