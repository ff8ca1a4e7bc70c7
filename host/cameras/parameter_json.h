#pragma once

#include <zentara/host/parameter.h>

#include "host/json.h"

namespace Zentara::Host {

[[nodiscard]] Json parameterJson(const ParameterValue& value);

/// The reverse, for the parameter of that number. \throws Failure (Usage) "parameter 0 takes a number, not \"x\""
[[nodiscard]] ParameterValue parameterFromJson(int number, const Json& json);

} // namespace Zentara::Host
