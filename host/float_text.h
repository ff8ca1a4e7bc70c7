#pragma once

#include <string>

#include "host/json_fwd.h"

namespace Zentara::Host {

/// The shortest decimal that reads back as the same float: "0.1", "nan", "-inf".
[[nodiscard]] std::string floatText(float value);

/// The same as a number; what JSON has no number for as a text.
[[nodiscard]] Json floatJson(float value);

/// "12.25"
[[nodiscard]] std::string decimalText(double value, int digits = 2);

} // namespace Zentara::Host
