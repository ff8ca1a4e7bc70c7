#pragma once

#include <string>
#include <vector>

#include <zentara/core/plugin_probe.h>

namespace Zentara::Tool {

/// What asking a file who it is came to.
struct PluginAnswer {
    Core::PluginProbe probe;
    /// It ended the process that asked, or had to be ended: `probe.step` is where, Accepted for
    /// its unloading. So it does to every program that
    /// looks for plug-ins.
    bool isFatal = false;
};

/// Asks each file in a process of its own, some at a time, for at most 5 s each. No file is compared with another one.
/// \param program the tool's own file \throws Failure when that cannot be started
[[nodiscard]] std::vector<PluginAnswer> askPlugins(const std::string& program,
                                                   const std::vector<std::string>& paths);

/// Whether this process was started by askPlugins().
[[nodiscard]] bool isPluginQuestion(const std::vector<std::string>& arguments);

/// Answers the question, in that process, which then has nothing left to do. \return its exit code
[[nodiscard]] int answerPluginQuestion(const std::vector<std::string>& arguments);

} // namespace Zentara::Tool
