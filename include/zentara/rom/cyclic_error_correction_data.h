#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/algorithm_id.h>
#include <zentara/rom/type_marker.h>

namespace Zentara::ROM {

/// The cyclic error correction: an algorithm byte, a count byte, then that many coefficients as floats, whose unit is
/// the algorithm's. There is one, for both camera modes. A copyable value. Separate.
class ZENTARA_API CyclicErrorCorrectionData {
public:
    static constexpr TypeMarker MARKER = TypeMarker::CyclicErrorCorrectionData;
    static constexpr std::uint8_t VERSION = 1;
    static constexpr std::uint32_t MIN_SIZE = 1 + 1;
    /// Algorithm 0, no coefficients.
    CyclicErrorCorrectionData();
    CyclicErrorCorrectionData(CyclicErrorAlgorithmID algorithm, const std::vector<float>& values);
    CyclicErrorCorrectionData(const CyclicErrorCorrectionData& other);
    CyclicErrorCorrectionData& operator=(const CyclicErrorCorrectionData& other);
    virtual ~CyclicErrorCorrectionData();

    bool operator==(const CyclicErrorCorrectionData& other) const;
    bool operator!=(const CyclicErrorCorrectionData& other) const;

    CyclicErrorAlgorithmID getAlgorithmID() const;
    const std::vector<float>& getValues() const;

protected:
    friend class Configuration;

    /// A new record read from its complete bytes, owned by the caller; null if they are no version 1 record
    /// of this marker or fewer than it needs.
    static CyclicErrorCorrectionData* deserialize(const std::vector<std::uint8_t>& bytes);

    /// \throws ArgumentPluginException for more than 255 coefficients.
    virtual std::vector<std::uint8_t> serialize() const;

private:
    void swap(CyclicErrorCorrectionData& other) noexcept;

    CyclicErrorAlgorithmID algorithm = CyclicErrorAlgorithmID::None;
    std::vector<float> values; ///< at most 255 can be written
};

} // namespace Zentara::ROM
