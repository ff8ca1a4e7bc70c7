#pragma once

#include <cstdint>

#include <zentara/export.h>
#include <zentara/io/device_request.h>

/// What tests adjust and look at in the library, exported by the copy of it that the target zentara_seams builds from
/// its objects. The library itself exports none of it.
namespace Testing::Seams {

/// How long a caller waits for its request, how long one device call may hold up everybody behind it, and how often
/// they look, in milliseconds. Safe.
ZENTARA_API void setProxyLimits(std::uint32_t timeout, std::uint32_t stuckCall, std::uint32_t slice) noexcept;

/// How many workers are kept because a device held their thread up when they were given back for the last time.
/// Those whose thread has ended since go when another worker is made. Safe.
[[nodiscard]] ZENTARA_API int retiredWorkers() noexcept;

/// What a proxy does with its last request.
ZENTARA_API void dropWhenLast(Zentara::IO::deviceRequest& request);

} // namespace Testing::Seams
