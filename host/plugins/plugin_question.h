#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <zentara/core/plugin_probe.h>
#include <zentara/host/plugins.h>

namespace Zentara::Host {

/// How long the program itself may take to begin, which a busy machine may take long to load.
inline constexpr std::chrono::seconds programStartLimit{60};

/// What asking a file who it is came to.
struct PluginAnswer {
    Core::PluginProbe probe;
    /// It ended the process that asked, or had to be ended: `probe.step` is where, Accepted for its unloading. So it does
    /// to every program that looks for plug-ins.
    bool isFatal = false;
};

/// Asks each file. No file is compared with another one. \throws Failure when the program cannot be started
[[nodiscard]] std::vector<PluginAnswer> askPlugins(const PluginQuestions& questions,
                                                   const std::vector<std::string>& paths);

} // namespace Zentara::Host
