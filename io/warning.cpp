#include "io/warning.h"

#include <zentara/utils/kv_logger.h>

#include "utils/visible_text.h"

namespace Zentara::IO {

void warn(const char* text) noexcept {
    try {
        if (auto* const logger = Utils::KVLogger::instance()) {
            logger->warning(Utils::visibleText(text));
            Utils::KVLogger::release();
        }
    } catch (...) {
        // Without the memory for a text there is no warning.
    }
}

} // namespace Zentara::IO
