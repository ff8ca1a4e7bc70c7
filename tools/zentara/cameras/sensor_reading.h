#pragma once

#include <optional>
#include <string>
#include <vector>

#include <zentara/host/camera.h>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// What the sensors said at one time.
struct Reading {
    double seconds = 0; ///< since the first one was asked for
    std::vector<Temperature> temperatures;
    std::optional<Acceleration> acceleration;
};

[[nodiscard]] Json readingJson(const Reading& reading);
/// On one line, with units.
[[nodiscard]] std::string readingText(const Reading& reading);

/// "sensor 1 (illumination)"
[[nodiscard]] std::string labelOf(const Temperature& value);

} // namespace Zentara::Tool
