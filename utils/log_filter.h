#pragma once

#include <string>

#include <zentara/utils/kv_logger.h>

namespace Zentara::Utils {

/// Whether the filter that setLogFilter() has set, if any, lets the calling thread's message pass.
[[nodiscard]] bool passesLogFilter(KVLogLevel level, const std::string& message) noexcept;

} // namespace Zentara::Utils
