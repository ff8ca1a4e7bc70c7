#include <zentara/rom/configuration.h>

#include "rom/record.h"

namespace Zentara::ROM {

Configuration::Configuration(const TemperatureCalibrationData& calibration, const PhaseOffset& offset,
                             const PhaseOffset& offset2, const TemperatureCompensationData& compensation,
                             const CyclicErrorCorrectionData& correction)
    : temperatureCalibration(calibration), phaseOffset(offset), phaseOffset2(offset2),
      temperatureCompensation(compensation), cyclicErrorCorrection(correction) {}
Configuration::Configuration(const Configuration& other) = default;
Configuration& Configuration::operator=(const Configuration& other) = default;
Configuration::~Configuration() = default;

ContainerSectionType Configuration::getType() const { return ContainerSectionType::Configuration; }
TemperatureCalibrationData Configuration::getTemperatureCalibration() const { return temperatureCalibration; }
PhaseOffset Configuration::getPhaseOffset() const { return phaseOffset; }
PhaseOffset Configuration::getPhaseOffset2() const { return phaseOffset2; }
TemperatureCompensationData Configuration::getTemperatureCompensation() const {
    return temperatureCompensation;
}
CyclicErrorCorrectionData Configuration::getCyclicErrorCorrection() const { return cyclicErrorCorrection; }

// In the order of the format, each offset with the marker that it carries.
std::vector<std::uint8_t> Configuration::serialize() const {
    std::vector<std::uint8_t> bytes = temperatureCalibration.serialize();
    append(bytes, phaseOffset.serialize());
    append(bytes, phaseOffset2.serialize());
    append(bytes, temperatureCompensation.serialize());
    append(bytes, cyclicErrorCorrection.serialize());
    return bytes;
}

Configuration* Configuration::deserialize(const std::vector<std::uint8_t>& bytes) {
    TemperatureCalibrationData calibration;
    PhaseOffset offset;
    PhaseOffset offset2; // carries the first marker until a record says otherwise
    TemperatureCompensationData compensation;
    CyclicErrorCorrectionData correction;
    readRecords(bytes,
                {{TemperatureCalibrationData::MARKER, "TemperatureCalibrationData",
                  [&](const auto& record) {
                      return keep(calibration, TemperatureCalibrationData::deserialize(record));
                  }},
                 {PhaseOffset::MARKER, "PhaseOffset",
                  [&](const auto& record) { return keep(offset, PhaseOffset::deserialize(record)); }},
                 {PhaseOffset::MARKER2, "PhaseOffset",
                  [&](const auto& record) { return keep(offset2, PhaseOffset::deserialize(record)); }},
                 {TemperatureCompensationData::MARKER, "TemperatureCompensationData",
                  [&](const auto& record) {
                      return keep(compensation, TemperatureCompensationData::deserialize(record));
                  }},
                 {CyclicErrorCorrectionData::MARKER, "CyclicErrorCorrectionData", [&](const auto& record) {
                      return keep(correction, CyclicErrorCorrectionData::deserialize(record));
                  }}});
    return new Configuration(calibration, offset, offset2, compensation, correction);
}

} // namespace Zentara::ROM
