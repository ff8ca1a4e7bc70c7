#pragma once

namespace Zentara::Utils::Platform {

/// Keeps the library or program that this code is part of in the process until it ends, whoever gives it back. For
/// a thread that has to be left behind in it. Any number of calls; false on failure.
bool pinThisLibrary() noexcept;

} // namespace Zentara::Utils::Platform
