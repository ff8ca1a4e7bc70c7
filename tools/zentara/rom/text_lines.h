#pragma once

#include <ostream>
#include <string>

#include "utils/visible_text.h"

namespace Zentara::Tool {

/// Takes whatever becomes a text, a `Format` among them; names of files in it are made fit for a terminal.
inline void printLine(std::ostream& out, const std::string& text) { out << Utils::visibleText(text) << '\n'; }

} // namespace Zentara::Tool
