#include "utils/platform/local_time.h"

namespace Zentara::Utils::Platform {

bool localTime(std::time_t time, std::tm& fields) noexcept { return localtime_s(&fields, &time) == 0; }

} // namespace Zentara::Utils::Platform
