#include <zentara/rom/extrinsics_data.h>

#include <utility>

#include "rom/big_endian_writer.h"
#include "rom/record.h"

namespace Zentara::ROM {

ExtrinsicsData::ExtrinsicsData() = default;
ExtrinsicsData::ExtrinsicsData(float r11, float r12, float r13, float r21, float r22, float r23, float r31,
                               float r32, float r33, float t1, float t2, float t3)
    : values{r11, r12, r13, r21, r22, r23, r31, r32, r33, t1, t2, t3} {}
ExtrinsicsData::ExtrinsicsData(const ExtrinsicsData& other) = default;
ExtrinsicsData& ExtrinsicsData::operator=(const ExtrinsicsData& other) {
    ExtrinsicsData copy(other);
    swap(copy);
    return *this;
}
ExtrinsicsData::~ExtrinsicsData() = default;

// Number by number: a NaN makes a record differ from itself.
bool ExtrinsicsData::operator==(const ExtrinsicsData& other) const { return values == other.values; }
bool ExtrinsicsData::operator!=(const ExtrinsicsData& other) const { return !(*this == other); }

void ExtrinsicsData::swap(ExtrinsicsData& other) noexcept { std::swap(values, other.values); }

float ExtrinsicsData::getR11() const { return values[0]; }
float ExtrinsicsData::getR12() const { return values[1]; }
float ExtrinsicsData::getR13() const { return values[2]; }
float ExtrinsicsData::getR21() const { return values[3]; }
float ExtrinsicsData::getR22() const { return values[4]; }
float ExtrinsicsData::getR23() const { return values[5]; }
float ExtrinsicsData::getR31() const { return values[6]; }
float ExtrinsicsData::getR32() const { return values[7]; }
float ExtrinsicsData::getR33() const { return values[8]; }
float ExtrinsicsData::getT1() const { return values[9]; }
float ExtrinsicsData::getT2() const { return values[10]; }
float ExtrinsicsData::getT3() const { return values[11]; }

ExtrinsicsData* ExtrinsicsData::deserialize(const std::vector<std::uint8_t>& bytes) {
    BigEndianReader in = openRecord(bytes, MARKER, VERSION);
    ExtrinsicsData read;
    for (float& value : read.values)
        value = in.readFloat();
    return in.ok() ? new ExtrinsicsData(read) : nullptr;
}

std::vector<std::uint8_t> ExtrinsicsData::serialize() const {
    BigEndianWriter out(SIZE);
    for (const float value : values)
        out.writeFloat(value);
    return makeRecord(MARKER, VERSION, out.take());
}

} // namespace Zentara::ROM
