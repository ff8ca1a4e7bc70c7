#pragma once

#include <string>
#include <vector>

#include <zentara/host/parameter.h>

#include "host/cameras/camera_parts.h"

namespace Zentara::Host {

// What is asked of a camera's parameters, on the camera's own thread. All throw Failure.

/// Those that the description lists; all there can be when it lists none.
[[nodiscard]] std::vector<int> parameterNumbers(CameraParts& parts);
[[nodiscard]] int parameterNumbered(CameraParts& parts, const std::string& word);
[[nodiscard]] Parameter describeParameter(CameraParts& parts, int number);
void setParameter(CameraParts& parts, int number, const ParameterValue& value);
[[nodiscard]] ParameterValues readValues(CameraParts& parts);
void writeValues(CameraParts& parts, const ParameterValues& values);

} // namespace Zentara::Host
