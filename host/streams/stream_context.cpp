#include <algorithm>
#include <cmath>
#include <limits>

#include <zentara/host/failure.h>
#include <zentara/utils/format.h>

#include "host/streams/frame_data.h"

namespace Zentara::Host {
namespace {

constexpr double twoPi = 6.283185307179586;
constexpr std::size_t phaseSteps = 65536;

} // namespace

const ModeCorrections* correctionsOf(const StreamInfo& info) noexcept {
    const auto mode = static_cast<std::size_t>(info.mode.cameraMode);
    return mode < info.corrections.modes.size() ? &info.corrections.modes[mode] : nullptr;
}

const Lens& StreamContext::lens() const {
    lensMade.call([this] {
        const std::string owner = info.camera.label() + " in " + info.mode.text();
        if (!info.lens)
            throw Failure(Failure::Failed, "cannot use the lens model of " + owner, "none is known",
                          "Calibrate the camera, or mend its description.");
        if (info.lens->width != info.mode.width || info.lens->height != info.mode.height)
            throw Failure(Failure::Failed, "cannot use the lens model of " + owner,
                          Utils::Format("it is for % x % pixels") % info.lens->width % info.lens->height);
        ownLens.emplace(*info.lens, info.depthAlong, owner);
    });
    return *ownLens;
}

const std::vector<float>& StreamContext::axisShares() const {
    // Of the way to a point the share along the axis: 1 to the length of the ray through (x, y, 1).
    sharesMade.call([this] {
        const Lens& own = lens();
        std::vector<float> made;
        made.reserve(std::size_t{info.mode.width} * info.mode.height);
        for (std::uint32_t y = 0; y < info.mode.height; ++y) {
            for (std::uint32_t x = 0; x < info.mode.width; ++x) {
                const auto ray = own.ray({static_cast<float>(x), static_cast<float>(y)});
                made.push_back(ray ? 1 / std::sqrt(ray->x * ray->x + ray->y * ray->y + 1)
                                   : std::numeric_limits<float>::quiet_NaN());
            }
        }
        shares = std::move(made);
    });
    return shares;
}

const std::vector<float>& StreamContext::harmonics() const {
    harmonicsMade.call([this] {
        const ModeCorrections* const mode = correctionsOf(info);
        const std::vector<float>& parameters = mode->cyclicParameters;
        std::vector<float> made(phaseSteps);
        for (std::size_t step = 0; step < phaseSteps; ++step) {
            // The mean, then cosine and sine of each harmonic. The angle is reduced in whole steps, which is exact.
            double sum = parameters.empty() ? 0 : parameters[0];
            for (std::size_t i = 1; i < parameters.size(); ++i) {
                const double angle =
                    twoPi * static_cast<double>(((i + 1) / 2 * step) % phaseSteps) / phaseSteps;
                sum += parameters[i] * (i % 2 == 1 ? std::cos(angle) : std::sin(angle));
            }
            made[step] = static_cast<float>(sum);
        }
        waves = std::move(made);
    });
    return waves;
}

} // namespace Zentara::Host
