#pragma once

#include <string>

#include <zentara/host/parameter.h>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// Numbers, true or false, or an object with x, y, width and height.
[[nodiscard]] Json toJson(const Host::ParameterValue& value);

/// The reverse. \param source names the value in messages \throws Failure when the kind is another
[[nodiscard]] Host::ParameterValue valueFromJson(int parameter, const Json& json, const std::string& source);

/// What a user types: a number; on, off, true, false; for the region X,Y,WIDTH,HEIGHT. \throws Failure
[[nodiscard]] Host::ParameterValue valueFromText(int parameter, const std::string& text);

/// By their numbers.
[[nodiscard]] Json toJson(const Host::ParameterValues& values);

/// All that is told of a parameter: number, name, supported, kind, unit, access, value and range.
[[nodiscard]] Json toJson(const Host::Parameter& parameter);

/// "read-write", "read", "write" or "-".
[[nodiscard]] const char* accessName(const Host::Parameter& parameter) noexcept;

} // namespace Zentara::Tool
