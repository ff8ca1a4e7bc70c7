#pragma once

#include <string>

namespace Zentara::V4l2 {

/// Who has a device open: "process 4711 (cheese) has it open", as far as this user may know; of another user's processes
/// only root is told.
[[nodiscard]] std::string holdersOf(const std::string& device);

} // namespace Zentara::V4l2
