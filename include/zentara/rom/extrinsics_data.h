#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/type_marker.h>

namespace Zentara::ROM {

/// The rigid transform between depth and colour camera: a rotation matrix, row by row, then a translation.
/// Twelve floats, the translation in the units of whoever wrote it; the SDK's nodes take it for millimetres, from the
/// depth to the colour camera. A copyable value. Separate.
class ZENTARA_API ExtrinsicsData {
public:
    static constexpr TypeMarker MARKER = TypeMarker::ExtrinsicsData;
    static constexpr std::uint8_t VERSION = 1;
    static constexpr std::uint32_t SIZE = 12 * 4;
    /// All twelve 0, which is not the identity.
    ExtrinsicsData();
    ExtrinsicsData(float r11, float r12, float r13, float r21, float r22, float r23, float r31, float r32,
                   float r33, float t1, float t2, float t3);
    ExtrinsicsData(const ExtrinsicsData& other);
    ExtrinsicsData& operator=(const ExtrinsicsData& other);
    virtual ~ExtrinsicsData();

    bool operator==(const ExtrinsicsData& other) const;
    bool operator!=(const ExtrinsicsData& other) const;

    float getR11() const;
    float getR12() const;
    float getR13() const;
    float getR21() const;
    float getR22() const;
    float getR23() const;
    float getR31() const;
    float getR32() const;
    float getR33() const;
    float getT1() const;
    float getT2() const;
    float getT3() const;

protected:
    friend class SystemCalibration;

    /// A new record read from its complete bytes, owned by the caller; null if they are no version 1 record
    /// of this marker or fewer than it needs.
    static ExtrinsicsData* deserialize(const std::vector<std::uint8_t>& bytes);

    virtual std::vector<std::uint8_t> serialize() const;

private:
    void swap(ExtrinsicsData& other) noexcept;

    std::array<float, 12> values{}; ///< r11 to r33, t1 to t3: as on flash
};

} // namespace Zentara::ROM
