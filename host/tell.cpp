#include "host/tell.h"

#include <zentara/utils/kv_logger.h>

namespace Zentara::Host {

void tell(const Note& note, const std::string& text) noexcept {
    if (note) {
        note(text);
        return;
    }
    // Nobody listens: the library's log is the last place where somebody may look.
    if (Utils::KVLogger* log = Utils::KVLogger::instance()) {
        log->warning(text);
        Utils::KVLogger::release();
    }
}

} // namespace Zentara::Host
