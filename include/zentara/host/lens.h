#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include <zentara/camera_intrinsics.h>
#include <zentara/host/export.h>
#include <zentara/host/point_cloud.h>

namespace Zentara::Host {

class Frame;

/// What a depth value measures.
enum class DepthAlong {
    Axis, ///< the distance from the camera's plane, along its optical axis: a wall in front has one value
    Ray,  ///< the distance from the camera's centre, along the pixel's ray: a sphere around it has one value
};

/// "axis" or "ray".
[[nodiscard]] ZENTARA_HOST_API const char* depthAlongName(DepthAlong along) noexcept;

/// A place in a picture, in pixels; (0, 0) is the centre of the upper left pixel. It may lie between pixels, and outside
/// the picture. A plain value. Separate.
struct PixelPlace {
    float x = 0; ///< to the right
    float y = 0; ///< down

    friend bool operator==(const PixelPlace&, const PixelPlace&) = default;
};

/// A camera's lens: from pixels to rays, from depth to points, and back.
///
/// Pinhole projection with radial (k1, k2, k3) and tangential (p1, p2) distortion, after Brown and Conrady: with
/// x = X/Z, y = Y/Z and r2 = x2 + y2,
///
///     u = fx (x (1 + k1 r2 + k2 r4 + k3 r6) + 2 p1 xy + p2 (r2 + 2 x2)) + cx
///     v = fy (y (1 + k1 r2 + k2 r4 + k3 r6) + p1 (r2 + 2 y2) + 2 p2 xy) + cy
///
/// A copyable value that never changes; its copies share one table of rays, which the first cloud makes. Safe.
class ZENTARA_HOST_API Lens {
public:
    /// \param model for pictures of width x height pixels, 1 to 65,535 each
    /// \param owner whose lens it is, for messages: a camera and its mode
    /// \throws Failure (Failed) when a size or a focal length is zero, or a number is not finite
    Lens(const CameraIntrinsics& model, DepthAlong depth, std::string owner);
    Lens(const Lens&);
    Lens& operator=(const Lens&);
    ~Lens();

    /// What the constructor was given. Lent as long as a copy of the lens lives, as the owner's name is.
    [[nodiscard]] const CameraIntrinsics& model() const noexcept;
    [[nodiscard]] DepthAlong depthAlong() const noexcept;
    [[nodiscard]] const std::string& owner() const noexcept;

    /// The point (x, y, 1) that is seen at that place, distortion taken out; none where the distortion cannot be taken
    /// out: no ray within a hundredth of a pixel was found in 20 steps, or only one a million times as far to the side as
    /// forward.
    [[nodiscard]] std::optional<Point> ray(PixelPlace place) const noexcept;

    /// Where a point in the camera's own coordinates is seen; it need not lie within the picture.
    /// \return none for points that are not in front of the camera, z <= 0
    [[nodiscard]] std::optional<PixelPlace> project(Point point) const noexcept;

    /// The camera matrix of OpenCV: fx 0 cx, 0 fy cy, 0 0 1, row by row.
    [[nodiscard]] std::array<double, 9> cameraMatrix() const noexcept;
    /// The distortion coefficients in the order of OpenCV: k1 k2 p1 p2 k3.
    [[nodiscard]] std::array<double, 5> distortionCoefficients() const noexcept;

    /// The points of a depth picture, in metres.
    /// \param depth width x height values in the unit of the options, row by row from the top; 0: no depth
    /// \param confidence as many values, any unit; or empty for none
    /// \throws Failure (Failed) when the size is not the model's, or more than half of the pixels have no ray;
    ///         (Usage) when a least confidence is asked for and there is no confidence
    [[nodiscard]] PointCloud pointsOf(std::span<const std::uint16_t> depth, std::uint32_t width,
                                      std::uint32_t height, const CloudOptions& options = {},
                                      std::span<const std::uint16_t> confidence = {}) const;

    /// The points of a depth frame, in metres: its own unit holds, and its own confidence. The cloud's file will say
    /// whose it is, and what was not corrected.
    /// \throws Failure as above; (Usage) for a frame of another kind, or one that measures depth otherwise than the lens
    [[nodiscard]] PointCloud pointsOf(const Frame& frame, CloudOptions options = {}) const;

private:
    struct Impl;
    std::shared_ptr<Impl> impl;
};

} // namespace Zentara::Host
