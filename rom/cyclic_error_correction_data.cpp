#include <zentara/rom/cyclic_error_correction_data.h>

#include <utility>

#include "rom/big_endian_writer.h"
#include "rom/coefficients.h"
#include "rom/record.h"

namespace Zentara::ROM {

CyclicErrorCorrectionData::CyclicErrorCorrectionData() = default;
CyclicErrorCorrectionData::CyclicErrorCorrectionData(CyclicErrorAlgorithmID identifier,
                                                     const std::vector<float>& coefficients)
    : algorithm(identifier), values(coefficients) {}
CyclicErrorCorrectionData::CyclicErrorCorrectionData(const CyclicErrorCorrectionData& other) = default;
CyclicErrorCorrectionData& CyclicErrorCorrectionData::operator=(const CyclicErrorCorrectionData& other) {
    CyclicErrorCorrectionData copy(other);
    swap(copy);
    return *this;
}
CyclicErrorCorrectionData::~CyclicErrorCorrectionData() = default;

bool CyclicErrorCorrectionData::operator==(const CyclicErrorCorrectionData& other) const {
    return algorithm == other.algorithm && values == other.values;
}
bool CyclicErrorCorrectionData::operator!=(const CyclicErrorCorrectionData& other) const {
    return !(*this == other);
}

void CyclicErrorCorrectionData::swap(CyclicErrorCorrectionData& other) noexcept {
    std::swap(algorithm, other.algorithm);
    std::swap(values, other.values);
}

CyclicErrorAlgorithmID CyclicErrorCorrectionData::getAlgorithmID() const { return algorithm; }
const std::vector<float>& CyclicErrorCorrectionData::getValues() const { return values; }

CyclicErrorCorrectionData* CyclicErrorCorrectionData::deserialize(const std::vector<std::uint8_t>& bytes) {
    BigEndianReader in = openRecord(bytes, MARKER, VERSION);
    // Any byte is kept: what it means is the depth processing's affair.
    const auto algorithm = static_cast<CyclicErrorAlgorithmID>(in.readU8());
    const std::vector<float> values = readCoefficients(in);
    return in.ok() ? new CyclicErrorCorrectionData(algorithm, values) : nullptr;
}

std::vector<std::uint8_t> CyclicErrorCorrectionData::serialize() const {
    BigEndianWriter out(MIN_SIZE + values.size() * sizeof(float));
    out.writeU8(static_cast<std::uint8_t>(algorithm));
    writeCoefficients(out, values);
    return makeRecord(MARKER, VERSION, out.take());
}

} // namespace Zentara::ROM
