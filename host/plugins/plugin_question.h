#pragma once

#include <chrono>
#include <functional>
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

/// Asks one file. \throws Failure when the program cannot be started
[[nodiscard]] PluginAnswer askPlugin(const PluginQuestions& questions, const std::string& path);

/// Asks each file of the list. No file is compared with another one.
/// \param list finds which files of the directory are to be asked; done while a first process asks all there are
/// \throws Failure when the program cannot be started; what `list` throws
[[nodiscard]] std::vector<PluginAnswer> askPlugins(const PluginQuestions& questions,
                                                   const std::string& directory,
                                                   const std::function<std::vector<std::string>()>& list);

} // namespace Zentara::Host
