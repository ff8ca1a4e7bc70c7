#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <zentara/export.h>
#include <zentara/guid.h>

namespace Zentara::Core {

/// The steps of the scan, in their order: what a file must pass to be registered.
enum class PluginScanStep : std::int32_t {
    Name,          ///< the path holds no "-d.dll" ("-d.so" off Windows), the mark of a debug build
    Open,          ///< the system loads it
    ImplGUID,      ///< it exports "getImplGUID"
    Duplicate,     ///< no file before it in the list has this GUID
    ImplType,      ///< "getImplType" is there and gives one of 1 to 6, 8 and 9
    PluginVersion, ///< "getPluginVersion" is there; any value will do
    SDKVersion,    ///< "getSDKVersion" is there and gives exactly the library's own version
    Accepted,      ///< registered
};

/// What the scan learnt about one file. Fields beyond the step that refused it are zero.
struct PluginProbe {
    std::string path;
    /// The step that refused the file, or Accepted.
    PluginScanStep step = PluginScanStep::Name;
    GUID guid{};
    std::int32_t type = 0;                       ///< as reported: any number, not only those of ImplType
    std::array<std::int32_t, 3> pluginVersion{}; ///< major, minor, patch
    std::array<std::int32_t, 4> sdkVersion{};    ///< major, minor, patch, build
    /// For a refused file: what the step found, for example "1.4.5.2150", and what it wanted, "1.4.5.2151".
    std::string found;
    std::string wanted;
    /// The whole in one line, fit for a user: "getSDKVersion gives 1.4.5.2150 where 1.4.5.2151 is wanted".
    std::string text;

    [[nodiscard]] bool accepted() const noexcept { return step == PluginScanStep::Accepted; }
};

/// The step's name as a short text for machines: "name", "open", "implGUID", "duplicate", "implType",
/// "pluginVersion", "sdkVersion", "accepted"; "unknown" for any other value. Safe.
[[nodiscard]] ZENTARA_API const char* pluginScanStepName(PluginScanStep step) noexcept;

/// The ending of plug-in files, without the dot: "dll" on Windows, "so" elsewhere. Safe.
[[nodiscard]] ZENTARA_API const char* pluginFileExtension() noexcept;

/// Where the plug-in manager looks: "bin/Plugins/" below the install root, with a separator at its end. Safe.
/// \throws Zentara::Plugin::InitializationPluginException "couldn't get bin directory" when the root cannot be read.
[[nodiscard]] ZENTARA_API std::string getPluginDirectory();

/// Puts every file of a directory that has the plug-ins' ending through the scan, sorted by path; this is the
/// scan of the plug-in manager itself. Each file is opened, asked and closed before the next; its code runs
/// on the calling thread. A directory that is missing or empty gives an empty list. What a file is, lacks or
/// throws ends in its own entry and stops nothing. Safe.
[[nodiscard]] ZENTARA_API std::vector<PluginProbe> probePluginDirectory(const std::string& directory);

/// Is told of each step before it begins, on the thread that scans; of Accepted when the questions are over, whatever
/// came of them, and the file is about to be closed. It throws nothing.
using PluginScanListener = std::function<void(PluginScanStep step)>;

/// Puts one file through the scan as if it were alone in its directory: no other one has its GUID. Whatever its name
/// ends in, it is opened. A program that is to survive what a file does to it calls this in a process of its own; the
/// last step that the listener was told then names what ended it. Safe.
/// \param begins may be empty
[[nodiscard]] ZENTARA_API PluginProbe probePluginFile(const std::string& path,
                                                      const PluginScanListener& begins);

} // namespace Zentara::Core
