#pragma once

#include <cstdint>
#include <vector>

#include <zentara/camera_intrinsics.h>
#include <zentara/export.h>
#include <zentara/rom/type_marker.h>

namespace Zentara::ROM {

/// A lens model of the depth or the colour camera: two 16-bit sizes in pixels, then nine floats in the order
/// fx, fy, cx, cy, k1, k2, p1, p2, k3, here as on flash. What they mean, `CameraIntrinsics` says, which counts k3 before
/// p1. A copyable value. Separate.
class ZENTARA_API IntrinsicsData {
public:
    /// Which camera the lens model is for; the marker on flash follows from it.
    enum class Type : std::int32_t { Depth = 0, Color = 1 };

    static constexpr TypeMarker DEPTH_MARKER = TypeMarker::DepthIntrinsicsData;
    static constexpr TypeMarker COLOR_MARKER = TypeMarker::ColorIntrinsicsData;
    static constexpr std::uint8_t VERSION = 1;
    static constexpr std::uint32_t SIZE = 2 * 2 + 9 * 4;
    IntrinsicsData(Type type, std::uint16_t width, std::uint16_t height, float fx, float fy, float cx,
                   float cy, float k1, float k2, float p1, float p2, float k3);
    IntrinsicsData(Type type, const CameraIntrinsics& intrinsics);
    IntrinsicsData(const IntrinsicsData& other);
    IntrinsicsData& operator=(const IntrinsicsData& other);
    virtual ~IntrinsicsData();

    bool operator==(const IntrinsicsData& other) const;
    bool operator!=(const IntrinsicsData& other) const;

    Type getType() const;
    std::uint16_t getWidth() const;
    std::uint16_t getHeight() const;
    float getFx() const;
    float getFy() const;
    float getCx() const;
    float getCy() const;
    float getK1() const;
    float getK2() const;
    float getK3() const;
    float getP1() const;
    float getP2() const;

protected:
    friend class SystemCalibration;

    /// A new record read from its complete bytes, owned by the caller; null if they are no version 1 record
    /// of this marker or fewer than it needs.
    static IntrinsicsData* deserialize(const std::vector<std::uint8_t>& bytes);

    virtual std::vector<std::uint8_t> serialize() const;

private:
    void swap(IntrinsicsData& other) noexcept;

    Type type;
    CameraIntrinsics intrinsics; ///< focal lengths and principal point in pixels
};

} // namespace Zentara::ROM
