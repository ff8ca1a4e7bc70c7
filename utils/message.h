#pragma once

#include <string>

namespace Zentara::Utils {

/// The text of a format string with one or two texts filled in. Throws what Format throws.
std::string formatMessage(const char* format, const std::string& argument);
std::string formatMessage(const char* format, const std::string& first, const std::string& second);

} // namespace Zentara::Utils
