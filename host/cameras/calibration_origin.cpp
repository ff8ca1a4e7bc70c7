#include "host/cameras/calibration_origin.h"

#include <array>
#include <utility>

#include <zentara/core/calibration_sources.h>

#include "host/tell.h"
#include "utils/visible_text.h"

namespace Zentara::Host {
namespace {

using Core::CalibrationPart;

struct Part {
    const char* name;
    CalibrationPart part;
    Source Sources::*place;
};

constexpr std::array<Part, 5> parts{
    {{"lens", CalibrationPart::Lens, &Sources::lens},
     {"extrinsics", CalibrationPart::Extrinsics, &Sources::extrinsics},
     {"corrections", CalibrationPart::Corrections, &Sources::corrections},
     {"accelerometer", CalibrationPart::Accelerometer, &Sources::accelerometer},
     {"serialNumber", CalibrationPart::SerialNumber, &Sources::serialNumber}}};

Source sourceOf(Core::CalibrationSource source) {
    switch (source) {
    case Core::CalibrationSource::None:
        return Source::None;
    case Core::CalibrationSource::Camera:
        return Source::Camera;
    case Core::CalibrationSource::Description:
        return Source::Description;
    case Core::CalibrationSource::Failure:
        return Source::Failure;
    }
    return Source::Unknown;
}

std::string partsFrom(const Sources& sources, Source source) {
    std::string list;
    for (const Part& part : parts) {
        if (sources.*part.place == source)
            list += (list.empty() ? "" : ", ") + std::string(part.name);
    }
    return list;
}

} // namespace

// A node need not tell.
Sources sourcesOf(const Core::DepthNodeInterface& node) {
    const auto* told = dynamic_cast<const Core::CalibrationSources*>(&node);
    Sources sources;
    for (const Part& part : parts)
        sources.*part.place =
            told == nullptr ? Source::Unknown : sourceOf(told->getCalibrationSource(part.part));
    if (told != nullptr)
        sources.failure = told->getCalibrationFailure();
    return sources;
}

void tellOrigin(const Sources& sources, const std::string& label, const Note& note) {
    const std::string failed = partsFrom(sources, Source::Failure);
    const std::string described = partsFrom(sources, Source::Description);
    if (!failed.empty())
        tell(note, label + ": its flash cannot be read (" + Utils::visibleText(sources.failure) +
                       "); not its own, but its model's or none: " + failed);
    else if (!described.empty())
        tell(note, label + ": its flash does not hold " + described +
                       "; those of its model's description are used");
}

} // namespace Zentara::Host
