#pragma once

#include <cstdint>
#include <string>

namespace Zentara::Utils::Platform {

/// The numbers are those of the Windows event types.
enum class SystemLogType : std::uint16_t { Error = 1, Warning = 2, Information = 4 };

/// Connects to the system's log under a source name. Null on failure. Leaves alone what the host itself may
/// have set up for its own logging.
void* openSystemLog(const char* source) noexcept;

/// Reports one entry of two texts (UTF-8). Never blocks and reports no failure.
void reportToSystemLog(void* log, SystemLogType type, const std::string& tag,
                       const std::string& message) noexcept;

/// Null is ignored.
void closeSystemLog(void* log) noexcept;

} // namespace Zentara::Utils::Platform
