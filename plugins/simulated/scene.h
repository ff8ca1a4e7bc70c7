#pragma once

#include <cstdint>

namespace Zentara::Simulated {

/// What the simulated depth camera looks at: a ball that circles over a tilted plane, seen with the noise of a
/// time-of-flight sensor. The same seed and frame number always give the same picture.
/// Has no state but its seed: safe on any thread.
class Scene final {
public:
    /// The plane lies between these depths, the ball in front of it; all in millimetres, noise apart.
    static constexpr float planeNear = 1100.0F;
    static constexpr float planeFar = 2600.0F;
    static constexpr float ballRadius = 220.0F;
    static constexpr float ballNearest = 620.0F;

    /// Frames until the ball is back where it started.
    static constexpr std::uint32_t framesPerRound = 180;

    explicit Scene(std::uint32_t noiseSeed) noexcept : seed(noiseSeed) {}

    /// Writes one frame of wire.h's two planes, each of pixelCount values.
    /// \param depth millimetres; 0 where the sensor sees nothing: at the ball's rim and at pixels that drop out.
    /// \param confidence 0 to fullConfidence; 0 exactly where depth is 0.
    void render(std::uint32_t frame, std::uint16_t* depth, std::uint16_t* confidence) const noexcept;

    /// Writes the same view in colour, colorBytes of YUY2.
    /// \param brightness added to the luma of every pixel.
    void renderColor(std::uint32_t frame, int brightness, std::uint8_t* pixels) const noexcept;

private:
    std::uint32_t seed;
};

} // namespace Zentara::Simulated
