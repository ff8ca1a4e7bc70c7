#include "utils/platform/error_text.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "utils/platform/posix/loader_error.h"

namespace Zentara::Utils::Platform {

namespace {

/// The number that stands for a kept loader text; no call of the library fails with it otherwise.
constexpr int loaderErrorNumber = ELIBACC;

/// A plain array: an object with a destructor would keep the library from being unloaded.
thread_local char loaderText[512];

} // namespace

void keepLoaderError(const char* text) noexcept {
    std::snprintf(loaderText, sizeof loaderText, "%s", text ? text : "");
    errno = loaderErrorNumber;
}

std::uint32_t lastError() noexcept { return static_cast<std::uint32_t>(errno); }

void setLastError(std::uint32_t number) noexcept { errno = static_cast<int>(number); }

std::uint32_t lastSocketError() noexcept { return lastError(); }

std::string errorText(std::uint32_t number) {
    const char* text = strerrordesc_np(static_cast<int>(number));
    return text ? text : "";
}

std::string lastErrorText() {
    const int number = errno;
    if (number == loaderErrorNumber && loaderText[0] != '\0')
        return loaderText;
    return errorText(static_cast<std::uint32_t>(number));
}

} // namespace Zentara::Utils::Platform
