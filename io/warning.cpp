#include "io/warning.h"

#include <zentara/utils/kv_logger.h>

namespace Zentara::IO {

void warn(const char* text) noexcept {
    try {
        if (auto* const logger = Utils::KVLogger::instance()) {
            logger->warning(text);
            Utils::KVLogger::release();
        }
    } catch (...) {
        // Without the memory for a text there is no warning.
    }
}

} // namespace Zentara::IO
