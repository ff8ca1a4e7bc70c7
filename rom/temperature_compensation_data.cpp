#include <zentara/rom/temperature_compensation_data.h>

#include <utility>

#include "rom/big_endian_writer.h"
#include "rom/coefficients.h"
#include "rom/record.h"

namespace Zentara::ROM {

TemperatureCompensationData::TemperatureCompensationData() = default;
TemperatureCompensationData::TemperatureCompensationData(TemperatureAlgorithmID identifier,
                                                         const std::vector<float>& coefficients)
    : algorithm(identifier), values(coefficients) {}
TemperatureCompensationData::TemperatureCompensationData(const TemperatureCompensationData& other) = default;
TemperatureCompensationData&
TemperatureCompensationData::operator=(const TemperatureCompensationData& other) {
    TemperatureCompensationData copy(other);
    swap(copy);
    return *this;
}
TemperatureCompensationData::~TemperatureCompensationData() = default;

bool TemperatureCompensationData::operator==(const TemperatureCompensationData& other) const {
    return algorithm == other.algorithm && values == other.values;
}
bool TemperatureCompensationData::operator!=(const TemperatureCompensationData& other) const {
    return !(*this == other);
}

void TemperatureCompensationData::swap(TemperatureCompensationData& other) noexcept {
    std::swap(algorithm, other.algorithm);
    std::swap(values, other.values);
}

TemperatureAlgorithmID TemperatureCompensationData::getAlgorithmID() const { return algorithm; }
const std::vector<float>& TemperatureCompensationData::getValues() const { return values; }

TemperatureCompensationData*
TemperatureCompensationData::deserialize(const std::vector<std::uint8_t>& bytes) {
    BigEndianReader in = openRecord(bytes, MARKER, VERSION);
    // Any byte is kept: what it means is the depth processing's affair.
    const auto algorithm = static_cast<TemperatureAlgorithmID>(in.readU8());
    const std::vector<float> values = readCoefficients(in);
    return in.ok() ? new TemperatureCompensationData(algorithm, values) : nullptr;
}

std::vector<std::uint8_t> TemperatureCompensationData::serialize() const {
    BigEndianWriter out(MIN_SIZE + values.size() * sizeof(float));
    out.writeU8(static_cast<std::uint8_t>(algorithm));
    writeCoefficients(out, values);
    return makeRecord(MARKER, VERSION, out.take());
}

} // namespace Zentara::ROM
