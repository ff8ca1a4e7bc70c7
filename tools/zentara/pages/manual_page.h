#pragma once

#include <string>

namespace CLI {
class App;
}

namespace Zentara::Tool {

/// The manual page, for man(1): what --help says of the program and of each verb, and nothing else.
[[nodiscard]] std::string manualPage(const CLI::App& program, const std::string& version);

} // namespace Zentara::Tool
