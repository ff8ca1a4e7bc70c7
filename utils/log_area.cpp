#include <zentara/utils/log_area.h>

#include <atomic>

#include "utils/log_filter.h"

namespace Zentara::Utils {

namespace {

thread_local LogArea present = LogArea_DEVICES;
constinit std::atomic<LogFilter> chosen{nullptr};

} // namespace

LogAreaScope::LogAreaScope(LogArea area) noexcept : outer(present) { present = area; }

LogAreaScope::~LogAreaScope() { present = outer; }

LogArea LogAreaScope::current() noexcept { return present; }

void setLogFilter(LogFilter filter) noexcept { chosen = filter; }

bool passesLogFilter(KVLogLevel level, const std::string& message) noexcept {
    const LogFilter filter = chosen;
    return filter == nullptr || filter(present, level, message);
}

} // namespace Zentara::Utils
