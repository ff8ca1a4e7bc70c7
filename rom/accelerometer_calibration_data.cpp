#include <zentara/rom/accelerometer_calibration_data.h>

#include <utility>

#include "rom/big_endian_writer.h"
#include "rom/record.h"

namespace Zentara::ROM {

AccelerometerCalibrationData::AccelerometerCalibrationData() = default;
AccelerometerCalibrationData::AccelerometerCalibrationData(float onX, float onY, float onZ)
    : x(onX), y(onY), z(onZ) {}
AccelerometerCalibrationData::AccelerometerCalibrationData(const AccelerometerCalibrationData& other) =
    default;
AccelerometerCalibrationData&
AccelerometerCalibrationData::operator=(const AccelerometerCalibrationData& other) {
    AccelerometerCalibrationData copy(other);
    swap(copy);
    return *this;
}
AccelerometerCalibrationData::~AccelerometerCalibrationData() = default;

bool AccelerometerCalibrationData::operator==(const AccelerometerCalibrationData& other) const {
    return x == other.x && y == other.y && z == other.z;
}
bool AccelerometerCalibrationData::operator!=(const AccelerometerCalibrationData& other) const {
    return !(*this == other);
}

void AccelerometerCalibrationData::swap(AccelerometerCalibrationData& other) noexcept {
    std::swap(x, other.x);
    std::swap(y, other.y);
    std::swap(z, other.z);
}

float AccelerometerCalibrationData::getX() const { return x; }
float AccelerometerCalibrationData::getY() const { return y; }
float AccelerometerCalibrationData::getZ() const { return z; }

AccelerometerCalibrationData*
AccelerometerCalibrationData::deserialize(const std::vector<std::uint8_t>& bytes) {
    // Read whole and asked once: what is missing reads as 0. Surplus bytes are ignored.
    BigEndianReader in = openRecord(bytes, MARKER, VERSION);
    const float x = in.readFloat();
    const float y = in.readFloat();
    const float z = in.readFloat();
    return in.ok() ? new AccelerometerCalibrationData(x, y, z) : nullptr;
}

std::vector<std::uint8_t> AccelerometerCalibrationData::serialize() const {
    BigEndianWriter out(SIZE);
    for (const float value : {x, y, z})
        out.writeFloat(value);
    return makeRecord(MARKER, VERSION, out.take());
}

} // namespace Zentara::ROM
