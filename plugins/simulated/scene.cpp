#include "plugins/simulated/scene.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "plugins/simulated/firmware/factory_flash.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

constexpr float pi = 3.14159265F;
constexpr float noiseNear = 2.0F;  // standard deviation at one metre, millimetres; it grows with the square
constexpr float rimCosine = 0.22F; // flatter than this, light grazes off the ball and does not come back
constexpr std::uint32_t dropOneIn = 700;

/// The plane holds the points p with normal * p = 1: near at the picture's bottom, far at its top, and a little closer on
/// the right. The inverse of depth is linear in a picture, so its corners give the normal.
struct Plane {
    static constexpr float nearInverse = 1 / Scene::planeNear;
    static constexpr float farInverse = 1 / Scene::planeFar;
    static constexpr float halfWidth = 0.71F; // of a picture one unit away
    static constexpr float halfHeight = 0.53F;
    static constexpr float x = 0.15F * (nearInverse - farInverse) / (2 * halfWidth);
    static constexpr float y = 0.85F * (nearInverse - farInverse) / (2 * halfHeight);
    static constexpr float z = (nearInverse + farInverse) / 2;
    static constexpr float square = 210.0F; // of the checkerboard, millimetres
};

/// A well mixed number from the seed and a position (the finaliser of a 32-bit multiply-shift hash).
std::uint32_t mix(std::uint32_t value) noexcept {
    value ^= value >> 16;
    value *= 0x7FEB352DU;
    value ^= value >> 15;
    value *= 0x846CA68BU;
    return value ^ (value >> 16);
}

/// About normally distributed with mean 0 and deviation 1: four uniform bytes, summed.
float normal(std::uint32_t random) noexcept {
    const int sum =
        static_cast<int>((random & 255U) + ((random >> 8) & 255U) + ((random >> 16) & 255U) + (random >> 24));
    return static_cast<float>(sum - 510) / 147.8F;
}

/// Which square of the checkerboard a point of the plane lies in. It changes brightness, not depth.
bool isDark(float x, float y, float z) noexcept {
    // Along the plane: to the right, and down its slope.
    static const float flat = std::hypot(Plane::x, Plane::z);
    static const float steep = flat * std::hypot(flat, Plane::y);
    const float across = (x * Plane::z - z * Plane::x) / flat;
    const float down = (y * flat * flat - (x * Plane::x + z * Plane::z) * Plane::y) / steep;
    const auto squares = [](float way) { return static_cast<int>(std::floor(way / Plane::square)); };
    return (squares(across) + squares(down)) % 2 == 0;
}

/// One unit away from the eye.
struct Direction {
    double x;
    double y;
};

/// What a lens shows at a place that an ideal one would see in the direction `seen`; nothing where its distortion has no
/// inverse. \param guess where to begin: the nearer, the sooner it is found
std::optional<Direction> undistorted(const CameraIntrinsics& lens, Direction seen, Direction guess) noexcept {
    constexpr int mostRounds = 50;
    constexpr double tolerance = 1e-6;
    auto [x, y] = guess;
    for (int round = 0; round < mostRounds; ++round) {
        const double r2 = x * x + y * y;
        const double radial = 1 + r2 * (lens.k1 + r2 * (lens.k2 + r2 * lens.k3));
        const double offX = x * radial + 2 * lens.p1 * x * y + lens.p2 * (r2 + 2 * x * x) - seen.x;
        const double offY = y * radial + lens.p1 * (r2 + 2 * y * y) + 2 * lens.p2 * x * y - seen.y;
        if (std::abs(offX) < tolerance && std::abs(offY) < tolerance)
            return Direction{x, y};
        x -= offX / radial;
        y -= offY / radial;
    }
    return std::nullopt;
}

std::uint16_t confidenceOf(float depth, float brightness) noexcept {
    const float metres = depth / 1000.0F;
    const float received = brightness / (metres * metres);
    return static_cast<std::uint16_t>(std::clamp(received * fullConfidence, 1.0F, float{fullConfidence}));
}

std::uint16_t noisyDepth(float depth, std::uint32_t random) noexcept {
    const float metres = depth / 1000.0F;
    return static_cast<std::uint16_t>(std::lround(depth + noiseNear * metres * metres * normal(random)));
}

/// The lens for the frames of the wire; nothing where the description has none.
void take(const std::optional<std::vector<CameraIntrinsics>>& described, CameraIntrinsics& lens) {
    if (!described)
        return;
    for (const CameraIntrinsics& one : *described) {
        if (one.width == frameWidth && one.height == frameHeight && one.fx != 0 && one.fy != 0) {
            lens = one;
            return;
        }
    }
}

} // namespace

Eyes eyesOf(const CameraDescription& camera) {
    Eyes eyes;
    for (const NodeDescription& node : camera.nodes) {
        if (node.profiles.empty())
            continue;
        const Core::NodeDescriptor& described = node.profiles.front().descriptor;
        take(described.defaultDepthIntrinsics, eyes.depth.lens);
        take(described.defaultColorIntrinsics, eyes.color.lens);
        if (described.defaultExtrinsics && *described.defaultExtrinsics != ExtrinsicParametersInternal{})
            eyes.color.pose = *described.defaultExtrinsics;
    }
    if (!camera.controller.empty())
        eyes = {{factoryDepthLens, eyes.depth.pose}, {eyes.color.lens, factoryExtrinsics}};
    return eyes;
}

/// The ball in one frame.
class Scene::Ball {
public:
    Ball(std::uint32_t frame, const Vector& eye) noexcept {
        const float turn = 2.0F * pi * static_cast<float>(frame % framesPerRound) / framesPerRound;
        const float depth = ballNearest + ballRadius + 180.0F * (1.0F - std::cos(turn));
        const Vector centre{depth * 0.35F * std::sin(turn), depth * 0.17F * std::sin(2.0F * turn), depth};
        eyeFromCentre = {eye.x - centre.x, eye.y - centre.y, eye.z - centre.z};
        outside = dot(eyeFromCentre, eyeFromCentre) - ballRadius * ballRadius;
    }

    [[nodiscard]] Sample sampleAt(const Sight& sight) const noexcept {
        if (sight.toPlane == 0)
            return {0.0F, 0.0F, false};
        const float lengthSquare = dot(sight.way, sight.way);
        const float nearest = -dot(eyeFromCentre, sight.way);
        const float discriminant = nearest * nearest - lengthSquare * outside;
        if (discriminant <= 0 || nearest <= 0)
            return {sight.toPlane, sight.brightness, false};
        const float half = std::sqrt(discriminant);
        return {(nearest - half) / lengthSquare, half / (ballRadius * std::sqrt(lengthSquare)), true};
    }

private:
    static float dot(const Vector& left, const Vector& right) noexcept {
        return left.x * right.x + left.y * right.y + left.z * right.z;
    }

    Vector eyeFromCentre;
    float outside; ///< the square of the distance to the centre, less that of the radius
};

Scene::Scene(std::uint32_t noiseSeed, const Eye& eye) : seed(noiseSeed), sights(pixelCount) {
    const ExtrinsicParametersInternal& pose = eye.pose;
    const auto turnedBack = [&](float x, float y, float z) {
        return Vector{pose.r11 * x + pose.r21 * y + pose.r31 * z, pose.r12 * x + pose.r22 * y + pose.r32 * z,
                      pose.r13 * x + pose.r23 * y + pose.r33 * z};
    };
    place = turnedBack(-pose.t1, -pose.t2, -pose.t3);
    const float above = 1 - (Plane::x * place.x + Plane::y * place.y + Plane::z * place.z);
    Sight* sight = sights.data();
    for (int row = 0; row < frameHeight; ++row) {
        std::optional<Direction> last;
        std::optional<Direction> before;
        for (int column = 0; column < frameWidth; ++column, ++sight) {
            const Direction seen{(column - eye.lens.cx) / eye.lens.fx, (row - eye.lens.cy) / eye.lens.fy};
            // On a row the directions change about evenly.
            const Direction guess =
                last && before ? Direction{2 * last->x - before->x, 2 * last->y - before->y} : seen;
            before = std::exchange(last, undistorted(eye.lens, seen, guess));
            if (!last)
                continue;
            sight->way = turnedBack(static_cast<float>(last->x), static_cast<float>(last->y), 1);
            const float approach =
                Plane::x * sight->way.x + Plane::y * sight->way.y + Plane::z * sight->way.z;
            if (approach <= 0 || above <= 0)
                continue;
            const float steps = above / approach;
            const bool dark = isDark(place.x + steps * sight->way.x, place.y + steps * sight->way.y,
                                     place.z + steps * sight->way.z);
            sight->toPlane = steps;
            sight->brightness = dark ? 0.55F : 0.8F;
        }
    }
}

void Scene::render(std::uint32_t frame, std::uint16_t* depth, std::uint16_t* confidence) const noexcept {
    const Ball ball(frame, place);
    const std::uint32_t base = mix(seed ^ mix(frame + 1));
    std::uint32_t pixel = 0;
    for (const Sight& sight : sights) {
        const std::uint32_t random = mix(base + pixel);
        const Sample sample = ball.sampleAt(sight);
        const bool comesBack = sample.depth > 0.0F && (!sample.onBall || sample.brightness >= rimCosine);
        const bool seen = comesBack && random % dropOneIn != 0;
        depth[pixel] = seen ? noisyDepth(sample.depth, mix(random)) : std::uint16_t{0};
        confidence[pixel] = seen ? confidenceOf(sample.depth, sample.brightness) : std::uint16_t{0};
        ++pixel;
    }
}

void Scene::renderColor(std::uint32_t frame, int brightness, std::uint8_t* pixels) const noexcept {
    const Ball ball(frame, place);
    const std::uint32_t base = mix(seed ^ mix(frame + 1));
    std::uint32_t pixel = 0;
    for (const Sight& sight : sights) {
        const Sample sample = ball.sampleAt(sight);
        const float luma = 16.0F + 200.0F * sample.brightness + 2.0F * normal(mix(base + pixel));
        pixels[0] = static_cast<std::uint8_t>(std::clamp(static_cast<int>(luma) + brightness, 16, 235));
        // A blue-green ball on a sand-coloured plane; U and V take turns.
        const bool isU = pixel % 2 == 0;
        pixels[1] = sample.onBall ? (isU ? 158 : 70) : (isU ? 110 : 140);
        pixels += 2;
        ++pixel;
    }
}

} // namespace Zentara::Simulated
