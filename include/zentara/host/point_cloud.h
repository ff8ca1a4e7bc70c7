#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <zentara/extrinsic_parameters_internal.h>
#include <zentara/host/color.h>
#include <zentara/host/export.h>
#include <zentara/host/output_file.h>

namespace Zentara::Host {

class Lens;

/// A point in a camera's own coordinates, metres: x to the right, y down, z forward, from the camera's centre. A plain
/// value. Separate.
struct Point {
    float x = 0; ///< metres to the right
    float y = 0; ///< metres down
    float z = 0; ///< metres forward; NaN, as all three, for a pixel without a point

    friend bool operator==(const Point&, const Point&) = default;
};

/// What to make of a depth picture. A plain value. Separate.
struct CloudOptions {
    /// Keep the grid: one point a pixel, row by row, all three numbers NaN where there is none. Otherwise pixels
    /// without a point are left out, in the same order.
    bool keepGrid = false;
    /// Pixels of less confidence have no point. In the unit of the confidence; 0: all have one.
    std::uint16_t leastConfidence = 0;
    /// What a depth value of 1 stands for, 0.000001 to 1,000,000.
    float millimetresPerUnit = 1;
};

/// The points of one depth picture. A plain value that owns its points. Separate.
class ZENTARA_HOST_API PointCloud {
public:
    /// What a PLY file holds its numbers as.
    enum class PlyFormat {
        Binary, ///< little-endian, 12 bytes a point, 15 with colour
        Text,   ///< the shortest digits that read back as the same number
    };

    PointCloud();
    PointCloud(const PointCloud&);
    PointCloud(PointCloud&&) noexcept;
    PointCloud& operator=(const PointCloud&);
    PointCloud& operator=(PointCloud&&) noexcept;
    ~PointCloud();

    /// Metres.
    [[nodiscard]] std::span<const Point> points() const& noexcept { return all; }
    std::span<const Point> points() const&& = delete; ///< it would end with the cloud

    /// One a point, or empty: the cloud has not been coloured. None where the colour camera does not see the point.
    [[nodiscard]] std::span<const std::optional<Color>> colors() const& noexcept { return painted; }
    std::span<const std::optional<Color>> colors() const&& = delete;

    /// The picture's size in pixels when the grid was kept, else 0 x 0.
    [[nodiscard]] std::uint32_t width() const noexcept { return columns; }
    [[nodiscard]] std::uint32_t height() const noexcept { return rows; }

    /// Pixels without a point, by the reason that comes first: no depth, too little confidence, no ray because the
    /// lens model's distortion cannot be taken out there.
    [[nodiscard]] std::size_t withoutDepth() const noexcept { return depthless; }
    [[nodiscard]] std::size_t belowConfidence() const noexcept { return doubtful; }
    [[nodiscard]] std::size_t withoutRay() const noexcept { return rayless; }

    /// Takes the colours from a picture of another camera. A point that lies outside the picture, or behind another
    /// one as that camera sees it, gets none.
    /// \param rgb red, green and blue of each pixel of the lens's size, row by row from the top
    /// \param pose from this camera to the other one; the translation in millimetres
    /// \throws Failure (Failed) when the picture's size is not the lens's, or the pose is no rotation: all zero, or not
    ///         finite
    void colorFrom(std::span<const std::uint8_t> rgb, const Lens& lens,
                   const ExtrinsicParametersInternal& pose);

    /// That it is to have no colours, and why, for its file. \param why "color: nothing within 8.3 ms"
    void leaveUncolored(std::string why) { colorless = std::move(why); }
    /// Why it has no colours; empty when it has, or nobody asked for them.
    [[nodiscard]] const std::string& uncolored() const noexcept { return colorless; }

    /// Lines for the header of the file, after unit and axes: where the points come from, and what was not corrected.
    /// Line ends in them become blanks.
    void describe(std::vector<std::string> lines) { about = std::move(lines); }

    /// Writes the points as PLY 1.0: x, y, z as floats in metres and, when the cloud is coloured, red, green, blue; a
    /// point without a colour is black there. NaN is written as it is.
    /// The stream's state tells whether all was written; it is to be binary.
    void writePly(std::ostream& out, PlyFormat format = PlyFormat::Binary) const;
    /// Writes a PLY file, whole or not at all. \throws Failure as OutputFile does
    void writePly(const std::string& path, PlyFormat format = PlyFormat::Binary,
                  const OutputFile::Rules& rules = {}) const;

private:
    friend class Lens;

    std::vector<Point> all;                    ///< metres
    std::vector<std::optional<Color>> painted; ///< as many as points, or none
    std::vector<std::string> about;            ///< a line each, without line ends in the file
    std::string colorless;                     ///< why it has no colours; empty for no reason
    std::uint32_t columns = 0;                 ///< 0 unless the grid was kept
    std::uint32_t rows = 0;                    ///< the same
    std::uint32_t sourceColumns = 0;           ///< of the depth picture, also when the grid was not kept
    std::size_t depthless = 0;                 ///< pixels without depth
    std::size_t doubtful = 0;                  ///< pixels with depth, but too little confidence
    std::size_t rayless = 0;                   ///< pixels with both, but no ray
};

} // namespace Zentara::Host
