#pragma once

#include <string>
#include <vector>

#include <zentara/access_mode.h>
#include <zentara/io/parameter_interpreter.h>
#include <zentara/parameter_type.h>
#include <zentara/unit_type.h>

#include "host/float_text.h"
#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// The value of a parameter, as a request that sets it.
using ParameterValue = Utils::SmartPtr<IO::xuRequest>;

/// A value to be filled in, of the kind that the parameter's number fixes; null for an unknown number.
[[nodiscard]] ParameterValue emptyValue(ParameterType parameter);

/// Numbers, true or false, or an object with x, y, width and height.
[[nodiscard]] Json toJson(const ParameterValue& value);

/// The reverse. \param source names the value in messages \throws Failure when the kind is another
[[nodiscard]] ParameterValue valueFromJson(ParameterType parameter, const Json& json,
                                           const std::string& source);

/// What a user types: a number; on, off, true, false; for the region X,Y,WIDTH,HEIGHT. \throws Failure
[[nodiscard]] ParameterValue valueFromText(ParameterType parameter, const std::string& text);

/// The same, back.
[[nodiscard]] std::string toText(const ParameterValue& value);

/// What a parameter accepts; null where nothing is said.
[[nodiscard]] Json toJson(const ParameterRangeBaseInternal* range);
[[nodiscard]] std::string toText(const ParameterRangeBaseInternal* range);

/// Whether a value is inside. Floats may miss a bound by what the conversion to text costs.
[[nodiscard]] bool accepts(const ParameterRangeBaseInternal& range, const ParameterValue& value);

[[nodiscard]] const char* kindName(ParameterType parameter) noexcept;
[[nodiscard]] const char* unitName(UnitType unit) noexcept;
[[nodiscard]] const char* accessName(AccessMode mode) noexcept;

} // namespace Zentara::Tool
