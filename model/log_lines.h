#pragma once

#include <string>

#include <zentara/utils/kv_logger.h>
#include <zentara/utils/log_area.h>

namespace Zentara::Model {

/// One line of the process-wide log, if there is one: what was read from the camera's storage.
inline void logInfo(std::string line) {
    const Utils::LogAreaScope scope(Utils::LogArea_ROM);
    if (Utils::KVLogger* logger = Utils::KVLogger::instance()) {
        logger->info(std::move(line));
        Utils::KVLogger::release();
    }
}

} // namespace Zentara::Model
