#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/type_marker.h>

namespace Zentara::ROM {

/// The accelerometer's calibration: three floats, offsets along the camera's axes, in the units of whoever wrote them.
/// The SDK's nodes take them for g. A copyable value. Separate.
class ZENTARA_API AccelerometerCalibrationData {
public:
    static constexpr TypeMarker MARKER = TypeMarker::AccelerometerCalibrationData;
    static constexpr std::uint8_t VERSION = 1;
    static constexpr std::uint32_t SIZE = 3 * 4;
    /// All 0.
    AccelerometerCalibrationData();
    AccelerometerCalibrationData(float x, float y, float z);
    AccelerometerCalibrationData(const AccelerometerCalibrationData& other);
    AccelerometerCalibrationData& operator=(const AccelerometerCalibrationData& other);
    virtual ~AccelerometerCalibrationData();

    bool operator==(const AccelerometerCalibrationData& other) const;
    bool operator!=(const AccelerometerCalibrationData& other) const;

    float getX() const;
    float getY() const;
    float getZ() const;

protected:
    friend class SystemCalibration;

    /// A new record read from its complete bytes, owned by the caller; null if they are no version 1 record
    /// of this marker or fewer than it needs.
    static AccelerometerCalibrationData* deserialize(const std::vector<std::uint8_t>& bytes);

    virtual std::vector<std::uint8_t> serialize() const;

private:
    void swap(AccelerometerCalibrationData& other) noexcept;

    float x = 0; ///< to the right
    float y = 0; ///< down
    float z = 0; ///< into the scene
};

} // namespace Zentara::ROM
