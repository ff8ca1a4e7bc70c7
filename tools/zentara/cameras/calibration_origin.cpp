#include "tools/zentara/cameras/calibration_origin.h"

#include <array>
#include <utility>

#include <zentara/core/calibration_sources.h>

#include "tools/zentara/cameras/camera_bus.h"
#include "tools/zentara/console.h"

namespace Zentara::Tool {
namespace {

using Core::CalibrationPart;
using Core::CalibrationSource;

constexpr std::array<std::pair<const char*, CalibrationPart>, 5> parts{
    {{"lens", CalibrationPart::Lens},
     {"extrinsics", CalibrationPart::Extrinsics},
     {"corrections", CalibrationPart::Corrections},
     {"accelerometer", CalibrationPart::Accelerometer},
     {"serialNumber", CalibrationPart::SerialNumber}}};

Json nameOf(CalibrationSource source) {
    switch (source) {
    case CalibrationSource::Camera:
        return "camera";
    case CalibrationSource::Description:
        return "description";
    case CalibrationSource::Failure:
        return "failure";
    default:
        return {};
    }
}

std::string partsFrom(const Core::CalibrationSources& sources, CalibrationSource source) {
    std::string list;
    for (const auto& [name, part] : parts) {
        if (sources.getCalibrationSource(part) == source)
            list += (list.empty() ? "" : ", ") + std::string(name);
    }
    return list;
}

} // namespace

Json originJson(const Core::DepthNodeInterface& node) {
    const auto* sources = dynamic_cast<const Core::CalibrationSources*>(&node);
    Json json = Json::object();
    for (const auto& [name, part] : parts)
        json[name] = sources == nullptr ? Json() : nameOf(sources->getCalibrationSource(part));
    return json;
}

void tellOrigin(const Core::DepthNodeInterface& node, const std::string& label, std::ostream& err) {
    const auto* sources = dynamic_cast<const Core::CalibrationSources*>(&node);
    if (sources == nullptr)
        return;
    const std::string failed = partsFrom(*sources, CalibrationSource::Failure);
    const std::string described = partsFrom(*sources, CalibrationSource::Description);
    if (!failed.empty())
        tellLine(err, "zentara: " + label + ": its flash cannot be read (" +
                          printable(sources->getCalibrationFailure()) +
                          "); not its own, but its model's or none: " + failed);
    else if (!described.empty())
        tellLine(err, "zentara: " + label + ": its flash does not hold " + described +
                          "; those of its model's description are used");
}

} // namespace Zentara::Tool
