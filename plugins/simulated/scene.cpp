#include "plugins/simulated/scene.h"

#include <algorithm>
#include <cmath>

#include "plugins/descriptions/wire.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

constexpr float pi = 3.14159265F;
constexpr float noiseNear = 2.0F;  // standard deviation at one metre, millimetres; it grows with the square
constexpr float rimCosine = 0.22F; // flatter than this, light grazes off the ball and does not come back
constexpr std::uint32_t dropOneIn = 700;

/// The ball in one frame: its centre in pixels and millimetres, and how many pixels its radius covers.
struct Ball {
    float x;
    float y;
    float depth;
    float radius;
};

struct Sample {
    float depth;      // millimetres, 0 for none
    float brightness; // 0 to 1, the share of the light that comes back
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

Ball ballAt(std::uint32_t frame) noexcept {
    const float turn = 2.0F * pi * static_cast<float>(frame % Scene::framesPerRound) / Scene::framesPerRound;
    const float centre = Scene::ballNearest + Scene::ballRadius;
    const float depth = centre + 180.0F * (1.0F - std::cos(turn));
    return {frameWidth * (0.5F + 0.28F * std::sin(turn)),
            frameHeight * (0.5F + 0.18F * std::sin(2.0F * turn)), depth, Scene::ballRadius * 190.0F / depth};
}

/// The plane: near at the bottom, far at the top, and a little closer on the right.
Sample planeAt(int x, int y) noexcept {
    const float up = 1.0F - static_cast<float>(y) / (frameHeight - 1);
    const float left = 1.0F - static_cast<float>(x) / (frameWidth - 1);
    const float away = 0.85F * up + 0.15F * left;
    const bool dark =
        ((x / 40) + (y / 40)) % 2 == 0; // a printed checkerboard: it changes brightness, not depth
    return {Scene::planeNear + (Scene::planeFar - Scene::planeNear) * away, dark ? 0.55F : 0.8F};
}

Sample sampleAt(const Ball& ball, int x, int y) noexcept {
    const float dx = (static_cast<float>(x) - ball.x) / ball.radius;
    const float dy = (static_cast<float>(y) - ball.y) / ball.radius;
    const float square = dx * dx + dy * dy;
    if (square >= 1.0F)
        return planeAt(x, y);
    const float cosine = std::sqrt(1.0F - square);
    if (cosine < rimCosine)
        return {0.0F, 0.0F};
    return {ball.depth - Scene::ballRadius * cosine, cosine};
}

std::uint16_t confidenceOf(const Sample& sample) noexcept {
    const float metres = sample.depth / 1000.0F;
    const float received = sample.brightness / (metres * metres);
    return static_cast<std::uint16_t>(std::clamp(received * fullConfidence, 1.0F, float{fullConfidence}));
}

std::uint16_t noisyDepth(float depth, std::uint32_t random) noexcept {
    const float metres = depth / 1000.0F;
    return static_cast<std::uint16_t>(std::lround(depth + noiseNear * metres * metres * normal(random)));
}

} // namespace

void Scene::render(std::uint32_t frame, std::uint16_t* depth, std::uint16_t* confidence) const noexcept {
    const Ball ball = ballAt(frame);
    const std::uint32_t base = mix(seed ^ mix(frame + 1));
    std::uint32_t pixel = 0;
    for (int y = 0; y < frameHeight; ++y) {
        for (int x = 0; x < frameWidth; ++x, ++pixel) {
            const std::uint32_t random = mix(base + pixel);
            const Sample sample = sampleAt(ball, x, y);
            const bool seen = sample.depth > 0.0F && random % dropOneIn != 0;
            depth[pixel] = seen ? noisyDepth(sample.depth, mix(random)) : std::uint16_t{0};
            confidence[pixel] = seen ? confidenceOf(sample) : std::uint16_t{0};
        }
    }
}

void Scene::renderColor(std::uint32_t frame, int brightness, std::uint8_t* pixels) const noexcept {
    const Ball ball = ballAt(frame);
    const std::uint32_t base = mix(seed ^ mix(frame + 1));
    for (int y = 0; y < frameHeight; ++y) {
        for (int x = 0; x < frameWidth; ++x, pixels += 2) {
            const std::uint32_t random = mix(base + static_cast<std::uint32_t>(y * frameWidth + x));
            const Sample sample = sampleAt(ball, x, y);
            const float luma = 16.0F + 200.0F * sample.brightness + 2.0F * normal(random);
            pixels[0] = static_cast<std::uint8_t>(std::clamp(static_cast<int>(luma) + brightness, 16, 235));
            // A blue-green ball on a sand-coloured plane; U and V take turns.
            const bool onBall = sample.depth < planeNear;
            const bool isU = x % 2 == 0;
            pixels[1] = onBall ? (isU ? 158 : 70) : (isU ? 110 : 140);
        }
    }
}

} // namespace Zentara::Simulated
