#include <zentara/rom/gradient_distortion_correction_data.h>

#include <utility>

#include "rom/big_endian_writer.h"
#include "rom/record.h"

namespace Zentara::ROM {

GradientDistortionCorrectionData::GradientDistortionCorrectionData(std::uint16_t frequency,
                                                                   const std::vector<std::uint8_t>& table)
    : modulationFrequency(frequency), values(table) {}
GradientDistortionCorrectionData::GradientDistortionCorrectionData(
    const GradientDistortionCorrectionData& other) = default;
GradientDistortionCorrectionData&
GradientDistortionCorrectionData::operator=(const GradientDistortionCorrectionData& other) {
    GradientDistortionCorrectionData copy(other);
    swap(copy);
    return *this;
}
GradientDistortionCorrectionData::~GradientDistortionCorrectionData() = default;

bool GradientDistortionCorrectionData::operator==(const GradientDistortionCorrectionData& other) const {
    return modulationFrequency == other.modulationFrequency && values == other.values;
}

void GradientDistortionCorrectionData::swap(GradientDistortionCorrectionData& other) noexcept {
    std::swap(modulationFrequency, other.modulationFrequency);
    std::swap(values, other.values);
}

std::uint16_t GradientDistortionCorrectionData::getModulationFrequency() const { return modulationFrequency; }
const std::vector<std::uint8_t>& GradientDistortionCorrectionData::getValues() const { return values; }

GradientDistortionCorrectionData*
GradientDistortionCorrectionData::deserialize(const std::vector<std::uint8_t>& bytes) {
    BigEndianReader in = openRecord(bytes, MARKER, VERSION);
    const std::uint16_t frequency = in.readU16();
    const auto table = in.readBytes(in.readU32()); // a view: a count that lies takes no memory
    return in.ok() ? new GradientDistortionCorrectionData(frequency, {table.begin(), table.end()}) : nullptr;
}

std::vector<std::uint8_t> GradientDistortionCorrectionData::serialize() const {
    BigEndianWriter out(MIN_SIZE + values.size());
    out.writeU16(modulationFrequency);
    out.writeU32(static_cast<std::uint32_t>(values.size()));
    out.writeBytes(values);
    return makeRecord(MARKER, VERSION, out.take());
}

} // namespace Zentara::ROM
