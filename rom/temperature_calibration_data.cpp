#include <zentara/rom/temperature_calibration_data.h>

#include <utility>

#include "rom/big_endian_writer.h"
#include "rom/coefficients.h"
#include "rom/record.h"

namespace Zentara::ROM {

TemperatureCalibrationData::TemperatureCalibrationData() = default;
TemperatureCalibrationData::TemperatureCalibrationData(const std::vector<float>& coefficients)
    : values(coefficients) {}
TemperatureCalibrationData::TemperatureCalibrationData(const TemperatureCalibrationData& other) = default;
TemperatureCalibrationData& TemperatureCalibrationData::operator=(const TemperatureCalibrationData& other) {
    TemperatureCalibrationData copy(other);
    swap(copy);
    return *this;
}
TemperatureCalibrationData::~TemperatureCalibrationData() = default;

bool TemperatureCalibrationData::operator==(const TemperatureCalibrationData& other) const {
    return values == other.values;
}
bool TemperatureCalibrationData::operator!=(const TemperatureCalibrationData& other) const {
    return !(*this == other);
}

void TemperatureCalibrationData::swap(TemperatureCalibrationData& other) noexcept {
    std::swap(values, other.values);
}

const std::vector<float>& TemperatureCalibrationData::getValues() const { return values; }

TemperatureCalibrationData* TemperatureCalibrationData::deserialize(const std::vector<std::uint8_t>& bytes) {
    BigEndianReader in = openRecord(bytes, MARKER, VERSION);
    const std::vector<float> values = readCoefficients(in);
    return in.ok() ? new TemperatureCalibrationData(values) : nullptr;
}

std::vector<std::uint8_t> TemperatureCalibrationData::serialize() const {
    BigEndianWriter out(MIN_SIZE + values.size() * sizeof(float));
    writeCoefficients(out, values);
    return makeRecord(MARKER, VERSION, out.take());
}

} // namespace Zentara::ROM
