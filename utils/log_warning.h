#pragma once

#include <string>

#include <zentara/utils/kv_logger.h>
#include <zentara/utils/log_area.h>

namespace Zentara::Utils {

/// Logs a warning if there is a logger.
inline void logWarning(const std::string& message) {
    if (KVLogger* logger = KVLogger::instance()) {
        logger->warning(message);
        KVLogger::release();
    }
}

/// The same, about that area whatever the thread is about.
inline void logWarning(LogArea area, const std::string& message) {
    const LogAreaScope scope(area);
    logWarning(message);
}

} // namespace Zentara::Utils
