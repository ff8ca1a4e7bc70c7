#pragma once

#include <string>

#include "tools/zentara/rom/rom_target.h"

namespace Zentara::Tool {

/// What the verbs that write have in common.
struct WriteOptions : TargetOptions {
    bool dryRun = false;
    bool yes = false;
    ChangeOptions change;
    std::string backup; ///< where the bytes of before go; a name with the time unless set
};

/// --dry-run, --yes and --backup, and the options of the target.
void addWriteOptions(CLI::App& command, WriteOptions& options);
void addRebuildOption(CLI::App& command, WriteOptions& options);
/// --other-camera: also what only another camera has. \param meaning what that is to the verb, for the help
void addOtherCameraOption(CLI::App& command, WriteOptions& options,
                          const char* meaning = "Even if the camera's GUID changes");

/// The last step of every verb that writes: says what changes, asks for --yes where something goes, backs up, writes and
/// verifies. What the options forbid is refused. \param readOnlyHelp  remedy where read-only sections are in the way
[[nodiscard]] ExitCode makeChange(Flash& flash, const FlashChange& change, const WriteOptions& options,
                                  Console& console, const std::string& readOnlyHelp = {});

} // namespace Zentara::Tool
