#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include <zentara/host/export.h>
#include <zentara/host/plugin_name.h>
#include <zentara/host/plugins.h>

namespace Zentara::Host {

// Whether a plug-in keeps what its kind promises, found out by using it as hosts do, well and badly. Values: safe.

/// What became of one step.
enum class StepVerdict : std::int32_t {
    Passed,
    Remark, ///< allowed, and yet not what a host would wish for
    Failed,
    NotRun, ///< something that it needs is not there; `observed` tells what
};

/// The word for reports: "passed", "remark", "failed", "not run". Safe.
[[nodiscard]] ZENTARA_HOST_API const char* stepVerdictName(StepVerdict verdict) noexcept;

/// One thing that was tried. Its texts are fit for a terminal.
struct CheckedStep {
    std::string part; ///< "library", "object", "operations", "threads" or "ending"
    std::string name; ///< what was done: "readBuffer into 1 byte"
    StepVerdict verdict = StepVerdict::NotRun;
    std::string observed;    ///< what came back: "IOPluginException: no answer"
    std::string consequence; ///< what a host would see of it; empty for what passed
    std::string remedy;      ///< what its author can do; empty for what passed
    double milliseconds = 0; ///< that the plug-in took
};

/// What a plug-in was found to be.
struct PluginReport {
    std::string path;
    PluginName name;       ///< all 0 where the file does not tell
    std::int32_t type = 0; ///< a `Core::ImplType`; 0 where the file does not tell
    std::string kind;      ///< the same in words; empty where the file does not tell
    /// In the order in which they were tried.
    std::vector<CheckedStep> steps;

    /// How many ended so. \param verdict one of the four
    [[nodiscard]] ZENTARA_HOST_API std::size_t count(StepVerdict verdict) const;
    /// Whether no step failed.
    [[nodiscard]] bool passed() const { return count(StepVerdict::Failed) == 0; }
};

/// Puts one plug-in file, wherever it lies, through everything that hosts do with its kind: exports, objects, each
/// operation with sane and with hostile arguments, calls from several threads, the end of objects, and unloading. It
/// runs in processes of their own, with the plug-ins and descriptions of the install root around it, so that a node
/// finds its device and a device its camera; where one of these cameras is real, it is opened and streams. A step that
/// ends the process, or does not come back within the limit, is told as what it is, and what follows is tried without it.
/// \param questions how; `program` is not empty here, and `limit` is that of a step
/// \throws Failure when the file is not there (Usage), or when the program cannot be started
[[nodiscard]] ZENTARA_HOST_API PluginReport checkPlugin(const std::string& path,
                                                        const PluginQuestions& questions);

} // namespace Zentara::Host
