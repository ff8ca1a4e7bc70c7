#include "utils/platform/posix/system_log_address.h"

namespace Zentara::Utils::Platform {

const char*& systemLogAddress() noexcept {
    static const char* address = "/dev/log";
    return address;
}

} // namespace Zentara::Utils::Platform
