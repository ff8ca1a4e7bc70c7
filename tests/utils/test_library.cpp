#include <zentara/export.h>

#include "utils/platform/library_pin.h"

ZENTARA_PLUGIN_EXPORT int answer() { return 42; }

/// How often it was called since the library came into the process.
ZENTARA_PLUGIN_EXPORT int count() {
    static int calls = 0;
    return ++calls;
}

ZENTARA_PLUGIN_EXPORT int pin() { return Zentara::Utils::Platform::pinThisLibrary(); }
