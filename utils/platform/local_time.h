#pragma once

#include <ctime>

namespace Zentara::Utils::Platform {

/// Splits a time into local calendar fields, without any state shared between threads. False on failure.
bool localTime(std::time_t time, std::tm& fields) noexcept;

} // namespace Zentara::Utils::Platform
