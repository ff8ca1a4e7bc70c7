#pragma once

#include <string>
#include <utility>
#include <vector>

#include <zentara/host/camera.h>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// The values of a file, and the serial number of the camera that they are of; empty when it says none.
struct StoredValues {
    Host::ParameterValues values;
    std::string serialNumber;
};

/// \throws Failure naming the field that is wrong
[[nodiscard]] StoredValues readValues(const std::string& path);

/// Sets them one by one, when all have been found fit, so that a failure says which ones have been set before it.
void setOneByOne(const Host::Camera& camera,
                 const std::vector<std::pair<int, Host::ParameterValue>>& settings);

/// A camera may round to its steps; nobody is to take what was asked for what is.
void tellRounded(const Host::Camera& camera, int number, const Host::ParameterValue& asked, Console& console);

/// Sets all at once, or only says what would change. \param file where they come from, for messages
/// \return where the camera's values differ afterwards, one element a parameter
[[nodiscard]] Json loadValues(const Host::Camera& camera, const Host::ParameterValues& values,
                              const std::string& file, bool dryRun, Console& console);

} // namespace Zentara::Tool
