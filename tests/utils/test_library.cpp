#include <zentara/export.h>

#include "utils/platform/event.h"
#include "utils/platform/library_pin.h"
#include "utils/platform/word.h"

/// How often it was called since the library came into the process.
ZENTARA_PLUGIN_EXPORT int count() {
    static int calls = 0;
    return ++calls;
}

ZENTARA_PLUGIN_EXPORT int pin() { return Zentara::Utils::Platform::pinThisLibrary(); }

/// The end of the process waits for what nobody will do.
ZENTARA_PLUGIN_EXPORT void sleepAtTheEnd() {
    struct Sleeper {
        ~Sleeper() {
            Zentara::Utils::Platform::sleepOnWord(&word, 0, Zentara::Utils::Platform::infiniteWait);
        }
        std::uint32_t word = 0;
    };
    static const Sleeper sleeper;
}
