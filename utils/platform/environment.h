#pragma once

#include <string>

namespace Zentara::Utils::Platform {

/// Reads a variable of the process environment into `value` (UTF-8); false, and `value` untouched, if it is
/// not set.
bool readEnvironment(const std::string& name, std::string& value);

/// Sets a variable; an empty value removes it. False, with the last error set, for a name that is empty or
/// holds a '=' or a zero byte, for a value with a zero byte, and when the system refuses. Windows takes names
/// and values of at most 32,766 characters.
bool writeEnvironment(const std::string& name, const std::string& value);

} // namespace Zentara::Utils::Platform
