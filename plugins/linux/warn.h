#pragma once

#include <string>

#include <zentara/utils/kv_logger.h>

namespace Zentara::Linux {

/// Says something in the host's log, where it has one.
inline void warn(const std::string& text) {
    if (Utils::KVLogger* const log = Utils::KVLogger::instance()) {
        log->warning(text);
        Utils::KVLogger::release();
    }
}

} // namespace Zentara::Linux
