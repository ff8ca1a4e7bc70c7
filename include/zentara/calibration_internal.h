#pragma once

#include <cstdint>
#include <vector>

#include <zentara/drift_compensation.h>
#include <zentara/export.h>
#include <zentara/temperature_compensation_data.h>

namespace Zentara {

/// The calibration of a depth mode. A copyable value with a compact tagged form, in which it travels to and
/// from parameter back-ends. Separate.
class ZENTARA_API CalibrationInternal {
public:
    /// All zero, with the drift compensation (-1, 0).
    CalibrationInternal();

    /// Phase offset and phase delay are both `phase`; the rest is zero.
    CalibrationInternal(std::int16_t phase, DriftCompensation drift);

    [[nodiscard]] std::int16_t getPhaseOffset() const;
    void setPhaseOffset(std::int16_t newOffset);
    [[nodiscard]] std::int16_t getPhaseDelay() const;
    void setPhaseDelay(std::int16_t newDelay);
    [[nodiscard]] std::int16_t getPhaseDelay2() const;
    void setPhaseDelay2(std::int16_t newDelay);
    [[nodiscard]] DriftCompensation getDriftCompensation() const;
    void setDriftCompensation(DriftCompensation newDrift);

    /// Both sets in the same length, as the setter wants them: where a tagged form held two of different
    /// lengths, the shorter ends in zeros here.
    [[nodiscard]] TemperatureCompensationData getTemperatureCompensation() const;

    /// \throws Zentara::Plugin::ArgumentPluginException if a set has more than 255 coefficients or the two sets differ
    ///         in length; nothing is changed then.
    void setTemperatureCompensation(TemperatureCompensationData data);

    /// Writes the tagged form: phase delays and temperature compensation, each only when it is not zero.
    /// Phase offset and drift compensation are not part of it.
    /// \param size in: the buffer's bytes; out: the bytes needed, but only when the result is -1
    /// \return 0, or -1 when `buffer` is null or too small; also when `size` is null
    int marshal(unsigned char* buffer, unsigned int* size) const;

    /// Reads the tagged form. Records of unknown tag or version are skipped; what has no record stays as it
    /// is.
    /// \return 0, or -1 when a record does not fit the buffer or its own content; the object is unchanged
    ///         then
    int unmarshal(const unsigned char* buffer, unsigned int size);

    friend bool operator==(const CalibrationInternal&, const CalibrationInternal&) = default;

private:
    std::int16_t phaseOffset = 0;
    std::int16_t phaseDelay = 0;
    std::int16_t phaseDelay2 = 0;
    std::int32_t compensationKind = 0;
    std::uint16_t compensationCount = 0;
    std::vector<std::int32_t> secondCoefficients;
    std::vector<std::int32_t> firstCoefficients;
    DriftCompensation driftCompensation;
};

} // namespace Zentara
