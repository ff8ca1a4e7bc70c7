#pragma once

#include <utility>
#include <vector>

#include <zentara/host/camera_files.h>

#include "tools/zentara/cameras/camera_session.h"

namespace Zentara::Tool {

/// Sets them one by one, when all have been found fit, so that a failure says which ones have been set before it; what
/// the camera rounds is noted.
void setOneByOne(const Camera& camera, const std::vector<std::pair<int, ParameterValue>>& settings,
                 Console& console);

/// Sets all at once, or only says what would change. \param file where they come from, for messages
/// \return where the camera's values differ afterwards
[[nodiscard]] std::vector<ParameterChange> loadValues(const Camera& camera, const ParameterValues& values,
                                                      const std::string& file, bool dryRun, Console& console);

} // namespace Zentara::Tool
