#pragma once

namespace Zentara::IO::Detail {

/// How many workers are kept because a device held their thread up when they were given back for the last time.
/// Those whose thread has ended since go when another worker is made. For tests. Safe.
[[nodiscard]] int retiredWorkers() noexcept;

} // namespace Zentara::IO::Detail
