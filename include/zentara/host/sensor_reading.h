#pragma once

#include <optional>
#include <string>
#include <vector>

#include <zentara/host/camera.h>
#include <zentara/host/export.h>
#include <zentara/host/picture.h>

namespace Zentara::Host {

/// What a camera's sensors said at one time. A plain value. Separate.
struct SensorReading {
    double seconds = 0; ///< since a time of the host's choice
    std::vector<Temperature> temperatures;
    std::optional<Acceleration> acceleration;
};

/// As a JSON object: seconds; temperatures, each with sensor, name and celsius; acceleration, null or with name,
/// register, x, y and z. Safe.
[[nodiscard]] ZENTARA_HOST_API std::string toJson(const SensorReading& reading);

/// "sensor 1 (illumination)", as the camera's description calls it: the text of a device as it is. Safe.
[[nodiscard]] ZENTARA_HOST_API std::string labelOf(const Temperature& value);

/// The temperatures over the time and, where there are any, the accelerations below them. Safe.
/// \param camera whose they are, for the titles \throws Failure (Failed) when there is nothing to draw
[[nodiscard]] ZENTARA_HOST_API Picture plotOf(const std::string& camera,
                                              const std::vector<SensorReading>& readings);

} // namespace Zentara::Host
