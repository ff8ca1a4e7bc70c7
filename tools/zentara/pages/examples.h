#pragma once

#include <string>

namespace CLI {
class App;
}

namespace Zentara::Tool {

/// Puts examples after what each verb's help says, and after the program's.
void addExamples(CLI::App& program);

} // namespace Zentara::Tool
