#pragma once

#include <cstdint>
#include <vector>

#include <zentara/drift_compensation.h>
#include <zentara/export.h>
#include <zentara/temperature_compensation_data.h>

namespace Zentara {

/// The calibration of a depth mode. A copyable value with a compact tagged form, in which it travels to and
/// from parameter back-ends. Separate.
///
/// Phase offsets and delays are steps of the camera's raw phase, of which 65,536 are one turn: half a wavelength
/// of the modulation as a distance. A delay is taken out of what was measured.
///
/// The numbers are encoded twice. In a camera's flash they stand in the records of `ROM::Configuration`, whose
/// markers 64, 65, 34 and 66 are the tags 0x40, 0x41, 0x22 and 0x42 of the tagged form; but there lengths have
/// 32 bits, numbers are big-endian and coefficients are floats. Neither form can stand in for the other: that one
/// is the format that cameras carry, this one the boundary to back-ends, which are built separately.
class ZENTARA_API CalibrationInternal {
public:
    /// All zero, with the drift compensation (-1, 0).
    CalibrationInternal();

    /// Phase offset and phase delay are both `phase`; the rest is zero.
    /// \param phase steps of phase, -32768 to 32767
    CalibrationInternal(std::int16_t phase, DriftCompensation drift);

    /// Steps of phase. Kept here only: the tagged form has no place for it.
    [[nodiscard]] std::int16_t getPhaseOffset() const;
    void setPhaseOffset(std::int16_t newOffset);

    /// Steps of phase: in a depth configuration for the camera mode of that one, in what a parameter back-end
    /// holds for camera mode 0.
    [[nodiscard]] std::int16_t getPhaseDelay() const;
    void setPhaseDelay(std::int16_t newDelay);

    /// Steps of phase, for camera mode 1.
    [[nodiscard]] std::int16_t getPhaseDelay2() const;
    void setPhaseDelay2(std::int16_t newDelay);

    /// Kept here only, as the phase offset is.
    [[nodiscard]] DriftCompensation getDriftCompensation() const;
    void setDriftCompensation(DriftCompensation newDrift);

    /// Both sets in the same length, as the setter wants them: where a tagged form held two of different
    /// lengths, the shorter ends in zeros here.
    [[nodiscard]] TemperatureCompensationData getTemperatureCompensation() const;

    /// \throws Zentara::Plugin::ArgumentPluginException if a set has more than 255 coefficients or the two sets differ
    ///         in length; nothing is changed then.
    void setTemperatureCompensation(TemperatureCompensationData data);

    /// Writes the tagged form: phase delays and temperature compensation, each only when it is not zero.
    /// Phase offset and drift compensation are not part of it. All numbers are little-endian; each record begins
    /// with its tag, the version 1 and its own length in 16 bits, these four bytes included:
    ///
    ///     tag   length    payload
    ///     0x40  6         phase delay, 16 bits
    ///     0x41  6         phase delay 2, 16 bits
    ///     0x22  8 + 4 n   n in 8 bits, three bytes 0xFF, the first n coefficients of 32 bits
    ///     0x42  8 + 4 n   the kind's low 8 bits, n in 8 bits, two bytes 0xFF, the second n coefficients
    ///
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
    std::int32_t compensationKind = 0;            ///< 0: no temperature compensation
    std::uint16_t compensationCount = 0;          ///< of the second set, 0 to 255
    std::vector<std::int32_t> secondCoefficients; ///< always that many
    std::vector<std::int32_t> firstCoefficients;  ///< read from a record of its own: may be more or fewer
    DriftCompensation driftCompensation;
};

} // namespace Zentara
