#pragma once

#include <cstdint>
#include <vector>

#include <zentara/camera_intrinsics.h>
#include <zentara/extrinsic_parameters_internal.h>

#include "plugins/descriptions/camera_description.h"
#include "plugins/descriptions/wire.h"

namespace Zentara::Simulated {

/// One of the two cameras that look at the scene: its lens for frames of wire.h's size, and the way from the depth
/// camera's coordinates to its own. Unless told otherwise both see without distortion from one place.
struct Eye {
    CameraIntrinsics lens{Cameras::frameWidth, Cameras::frameHeight, 250, 250, 159.5F, 119.5F};
    ExtrinsicParametersInternal pose{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
};

struct Eyes {
    Eye depth;
    Eye color;
};

/// How a described camera is built. One with a controller has the depth lens and extrinsics that its flash holds when it
/// leaves the factory, whatever is written there later; the rest, and all of one without, is as the description says of
/// the default profile. What nobody says stays as usual.
[[nodiscard]] Eyes eyesOf(const Cameras::CameraDescription& camera);

/// What the simulated cameras look at, as one of them sees it: a ball that circles before a tilted plane with a printed
/// checkerboard. Depth has the noise of a time-of-flight sensor. The same seed, eye and frame number always give the same
/// picture. Never changes once made: safe on any thread.
class Scene final {
public:
    /// In millimetres. The plane lies about between these depths, the ball in front of it.
    static constexpr float planeNear = 1350.0F;
    static constexpr float planeFar = 2600.0F;
    static constexpr float ballRadius = 180.0F;
    static constexpr float ballNearest = 620.0F;

    /// Frames until the ball is back where it started.
    static constexpr std::uint32_t framesPerRound = 180;

    /// Works out all lines of sight, which takes as long as drawing a few frames.
    explicit Scene(std::uint32_t noiseSeed, const Eye& eye = {});

    /// Writes one frame of wire.h's two planes, each of pixelCount values.
    /// \param depth millimetres; 0 where the sensor sees nothing: at the ball's rim and at pixels that drop out.
    /// \param confidence 0 to fullConfidence; 0 exactly where depth is 0.
    void render(std::uint32_t frame, std::uint16_t* depth, std::uint16_t* confidence) const noexcept;

    /// Writes one frame in colour, colorBytes of YUY2.
    /// \param brightness added to the luma of every pixel.
    void renderColor(std::uint32_t frame, int brightness, std::uint8_t* pixels) const noexcept;

private:
    struct Vector {
        float x = 0;
        float y = 0;
        float z = 0;
    };
    /// One pixel's line of sight, and what it meets while the ball is elsewhere.
    struct Sight {
        Vector way; ///< in the depth camera's coordinates; a step is one millimetre along the eye's axis
        float toPlane = 0;    ///< in such steps; 0 for a pixel that sees nothing
        float brightness = 0; ///< there
    };
    struct Sample {
        float depth;      ///< millimetres along the eye's axis; 0 for none
        float brightness; ///< 0 to 1, the share of the light that comes back
        bool onBall;
    };
    class Ball;

    std::uint32_t seed;
    Vector place; ///< of the eye
    std::vector<Sight> sights;
};

} // namespace Zentara::Simulated
