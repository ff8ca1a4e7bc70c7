#pragma once

#include <string>

#include <zentara/utils/kv_logger.h>

namespace Zentara::Model {

/// One line of the process-wide log, if there is one.
inline void logInfo(std::string line) {
    if (Utils::KVLogger* logger = Utils::KVLogger::instance()) {
        logger->info(std::move(line));
        Utils::KVLogger::release();
    }
}

} // namespace Zentara::Model
