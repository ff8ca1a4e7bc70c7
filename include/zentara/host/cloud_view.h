#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <zentara/host/color_map.h>
#include <zentara/host/export.h>
#include <zentara/host/picture.h>
#include <zentara/host/point_cloud.h>

namespace Zentara::Host {

/// From where, and in which colours, a point cloud is looked at. A plain value. Separate.
///
/// The viewer looks at the middle of the cloud, as the camera did but turned about that middle, from so far away that
/// the cloud fills the picture; single wild points may lie outside it. Points in front hide those behind.
struct ZENTARA_HOST_API CloudView {
    double right = 30; ///< how far the viewer has gone to the right, degrees; less than 0: to the left
    double up = 20;    ///< and upwards, degrees
    std::uint32_t width = 640; ///< of what is seen, in pixels, 1 to 8192; title and scale stand beside it
    std::uint32_t height = 480;
    /// In the colours of the cloud, if it has any: points without one are gray. Otherwise by their distance from the
    /// camera along its axis, with a scale in metres.
    bool ownColors = false;
    /// The distances of the scale's ends, metres; those of the cloud when there is none.
    std::optional<ValueRange> range = {};

    /// The picture. \param title over it, in ASCII
    /// \throws Failure (Usage) for a size or an angle that makes no sense; (Failed) when the cloud has no point
    [[nodiscard]] Picture draw(const PointCloud& cloud, const std::string& title) const;
};

} // namespace Zentara::Host
