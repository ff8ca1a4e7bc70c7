#pragma once

#include <CLI/CLI.hpp>

namespace Zentara::Tool {

/// Takes seconds within a range; "nan", which is neither below nor above any number, is refused, too.
[[nodiscard]] CLI::Validator secondsBetween(double least, double most);

/// Takes any text but the empty one. \param what is named by it, for the message
[[nodiscard]] CLI::Validator anyName(const char* what);

} // namespace Zentara::Tool
