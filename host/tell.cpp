#include "host/tell.h"

#include <new>

#include <zentara/utils/kv_logger.h>

namespace Zentara::Host {

void tell(const Note& note, const std::string& text) noexcept {
    if (note) {
        note(text);
        return;
    }
    // Nobody listens: the library's log is the last place where somebody may look.
    try {
        if (Utils::KVLogger* log = Utils::KVLogger::instance()) {
            log->warning(text);
            Utils::KVLogger::release();
        }
    } catch (const std::bad_alloc&) { // there is none for the line either
    }
}

} // namespace Zentara::Host
