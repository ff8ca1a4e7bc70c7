#pragma once

#include <string>

namespace Zentara::Host {

/// For which machine a library or program was made: "Windows on x86-64". Empty for a file that is neither, or cannot
/// be read.
[[nodiscard]] std::string machineOf(const std::string& path);

} // namespace Zentara::Host
