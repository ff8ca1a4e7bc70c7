#pragma once

#include <functional>
#include <string>

#include <zentara/host/user_log.h>
#include <zentara/utils/kv_logger.h>

namespace Zentara::Host {

/// Logs what a user who asked for it wants to know; nothing otherwise, for a logger reports to the system's log as well.
void logInfo(const std::string& text) noexcept;

/// From now on the variable is not followed, and a wrong one no failure any more.
void passOverUserLog();

/// Is told each warning, and what is worse, while the user's log is on, whether that writes it or not; null for nobody.
/// Called on the thread that logs; must not log. Once this returns, the one of before is not called any more.
using LogEar = std::function<void(const std::string& message)>;
void listenToUserLog(LogEar ear);

} // namespace Zentara::Host
