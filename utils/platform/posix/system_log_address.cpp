#include "utils/platform/posix/system_log_address.h"

namespace Zentara::Utils::Platform {

// In a file of its own, so that no compiler draws it into its callers: a test that contains the port, too, and the
// library have to mean the same variable.
const char*& systemLogAddress() noexcept {
    static const char* address = "/dev/log";
    return address;
}

} // namespace Zentara::Utils::Platform
