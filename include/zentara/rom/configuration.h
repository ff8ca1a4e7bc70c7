#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/cyclic_error_correction_data.h>
#include <zentara/rom/object.h>
#include <zentara/rom/phase_offset.h>
#include <zentara/rom/temperature_calibration_data.h>
#include <zentara/rom/temperature_compensation_data.h>

namespace Zentara::ROM {

/// Section type 3: what the depth processing of this one camera is to be set to. Of each correction there is one, for
/// both camera modes, but two phase offsets. A copyable value. Separate.
class ZENTARA_API Configuration : public Object {
public:
    /// Give the second offset the second marker; both are written with the markers that they carry.
    Configuration(const TemperatureCalibrationData& temperatureCalibration, const PhaseOffset& phaseOffset,
                  const PhaseOffset& phaseOffset2, const TemperatureCompensationData& temperatureCompensation,
                  const CyclicErrorCorrectionData& cyclicErrorCorrection);
    Configuration(const Configuration& other);
    Configuration& operator=(const Configuration& other);
    ~Configuration() override;

    ContainerSectionType getType() const override;
    /// \throws ArgumentPluginException if a record has more than 255 coefficients.
    std::vector<std::uint8_t> serialize() const override;

    TemperatureCalibrationData getTemperatureCalibration() const;
    PhaseOffset getPhaseOffset() const;
    PhaseOffset getPhaseOffset2() const;
    TemperatureCompensationData getTemperatureCompensation() const;
    CyclicErrorCorrectionData getCyclicErrorCorrection() const;

protected:
    friend class Object;

    /// Never null; owned by the caller. Where the second offset is absent it is 0 and carries the first one's
    /// marker: written like that, it replaces the first when read again.
    static Configuration* deserialize(const std::vector<std::uint8_t>& bytes);

private:
    TemperatureCalibrationData temperatureCalibration;
    PhaseOffset phaseOffset;
    PhaseOffset phaseOffset2;
    TemperatureCompensationData temperatureCompensation;
    CyclicErrorCorrectionData cyclicErrorCorrection;
};

} // namespace Zentara::ROM
