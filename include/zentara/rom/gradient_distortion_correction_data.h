#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/type_marker.h>

namespace Zentara::ROM {

/// The correction table of one modulation frequency: the frequency as 16 bits, a 32-bit count, then that many
/// bytes. How they are laid out in rows the record does not say. A copyable value. Separate.
class ZENTARA_API GradientDistortionCorrectionData {
public:
    static constexpr TypeMarker MARKER = TypeMarker::GradientDistortionCorrectionData;
    static constexpr std::uint8_t VERSION = 1;
    static constexpr std::uint32_t MIN_SIZE = 2 + 4;

    GradientDistortionCorrectionData(std::uint16_t modulationFrequency,
                                     const std::vector<std::uint8_t>& values);
    GradientDistortionCorrectionData(const GradientDistortionCorrectionData& other);
    GradientDistortionCorrectionData& operator=(const GradientDistortionCorrectionData& other);
    virtual ~GradientDistortionCorrectionData();

    virtual bool operator==(const GradientDistortionCorrectionData& other) const;
    /// As stored; the unit is that of whoever wrote the file.
    virtual std::uint16_t getModulationFrequency() const;
    virtual const std::vector<std::uint8_t>& getValues() const;

protected:
    friend class GradientDistortionCorrection;

    /// A new record read from its complete bytes, owned by the caller; null if they are no version 1 record
    /// of this marker or fewer than the count says.
    static GradientDistortionCorrectionData* deserialize(const std::vector<std::uint8_t>& bytes);

    virtual std::vector<std::uint8_t> serialize() const;
    virtual void swap(GradientDistortionCorrectionData& other) noexcept; ///< exchanges the contents

private:
    std::uint16_t modulationFrequency; ///< as stored; the host library takes it for MHz
    std::vector<std::uint8_t> values;  ///< row by row
};

} // namespace Zentara::ROM
