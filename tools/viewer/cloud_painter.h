#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <zentara/host/frame.h>
#include <zentara/host/point_cloud.h>

#include "tools/viewer/canvas.h"
#include "tools/viewer/painters.h"

namespace Zentara::Viewer {

/// From where a cloud is looked at: turned about a point in front of the camera.
struct CloudPose {
    double right = 30; ///< how far the viewer has gone to the right, degrees
    double up = 20;    ///< and upwards
    double zoom = 1;   ///< 2: twice as large

    friend bool operator==(const CloudPose&, const CloudPose&) = default;
};

/// Paints the points of depth frames, each as a small square in the colour of its depth; those in front hide those
/// behind. Keeps what belongs to a lens from one frame to the next. Bound to one thread.
class CloudPainter final {
public:
    /// \throws Failure as Frame::depth() and Frame::lens() do
    void paint(const Canvas& canvas, const Area& area, const Host::Frame& frame, const DepthColors& colors,
               const CloudPose& pose);

private:
    void learn(const Host::Frame& frame);

    std::string owner;             ///< whose rays these are
    std::vector<Host::Point> rays; ///< of each pixel, for a depth value of 1; NaN where there is none
    float middle = 0;              ///< metres: how far before the camera is what the cloud is turned about
    std::vector<float> nearest;    ///< of each pixel of the area
};

} // namespace Zentara::Viewer
