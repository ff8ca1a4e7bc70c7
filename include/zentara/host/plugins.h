#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <zentara/host/export.h>
#include <zentara/host/plugin_name.h>

namespace Zentara::Host {

// What lies in the plug-in directory, and what is wrong with what no program gets to see. Values and functions of
// values: safe.

/// A plug-in that every program finds. A plain value.
struct RegisteredPlugin {
    std::string path;
    PluginName name;
    std::int32_t type = 0;                    ///< what it makes, a `Core::ImplType`
    std::string kind;                         ///< the same in words: "depth node"
    std::array<std::int32_t, 3> version{};    ///< its own: major, minor, patch
    std::array<std::int32_t, 4> sdkVersion{}; ///< of the SDK that it was built against, this one's
};

/// An entry of the plug-in directory that is not registered, and why. Its texts are fit for a terminal, but for `path`,
/// which is as the system has it.
struct RefusedFile {
    std::string path;
    /// What it did not pass: a step of the scan as `Core::pluginScanStepName` calls it, "unload" once it had answered,
    /// or before it is opened "kind" (it is no file), "link" (it leads nowhere), "ending" (nobody meant it to be one).
    std::string step;
    std::string reason; ///< "is a library for Linux on AArch64"
    std::string found;  ///< may be empty, as what was wanted
    std::string wanted;
    std::string remedy;
    bool isFatal = false; ///< it ends every program that looks for plug-ins
};

/// The plug-in directory, as far as one of them could be asked.
struct PluginDirectory {
    std::string path; ///< with a separator at its end
    bool isThere = false;
    bool everybodyMayWrite = false; ///< and what lies there runs in every program that looks for cameras
    std::vector<RegisteredPlugin> registered;
    std::vector<RefusedFile> refused; ///< everything else that lies there, by path
};

/// How plug-ins are asked who they are, which runs code of theirs.
struct PluginQuestions {
    /// The program that asks instead of this process, so that what a file does to it is told and ends nothing: one whose
    /// main() begins with answerPluginQuestion(), such as the host's own or the tool `zentara`. It is started once for
    /// all files, and anew for each that was not accepted then, some at a time. Where it is this program, only one thread
    /// runs in it and the system can copy a process, a copy does the former.
    /// Empty: each file is asked in this process, one after the other, and ends or stops it where it ends or hangs.
    std::string program;
    /// How long a file may take on its own, from when the program has started; then it is refused as one that hangs.
    std::chrono::milliseconds limit{5'000};
};

/// Looks through the plug-in directory as the plug-in manager does, and says of every entry what becomes of it.
/// \throws Failure when there is no install root, the directory may not be read (Permission) or the program cannot be
/// started; that there is no directory is no failure
[[nodiscard]] ZENTARA_HOST_API PluginDirectory surveyPlugins(const PluginQuestions& questions = {});

/// For the main() of a program that is named in `PluginQuestions::program`, before it does anything else. Where the
/// program was started to ask a plug-in, this asks it and ends the process, without the ends of static objects.
/// \param arguments the program's own in UTF-8, without its name
/// \return nothing where the program was started otherwise; else, where nobody takes the answer, its exit code
[[nodiscard]] ZENTARA_HOST_API std::optional<int>
answerPluginQuestion(const std::vector<std::string>& arguments);

} // namespace Zentara::Host
