#include "host/tell.h"

#include <zentara/utils/kv_logger.h>

namespace Zentara::Host {

void tell(const Note& note, const std::string& text) noexcept {
    if (note) {
        note(text);
        return;
    }
    if (Utils::KVLogger* log = Utils::KVLogger::instance()) {
        log->warning(text);
        Utils::KVLogger::release();
    }
}

} // namespace Zentara::Host
