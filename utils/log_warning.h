#pragma once

#include <string>

#include <zentara/utils/kv_logger.h>

namespace Zentara::Utils {

/// Logs a warning if there is a logger.
inline void logWarning(const std::string& message) {
    if (KVLogger* logger = KVLogger::instance()) {
        logger->warning(message);
        KVLogger::release();
    }
}

} // namespace Zentara::Utils
