#pragma once

#include <string>
#include <vector>

#include "tools/zentara/rom/rehearsal.h"
#include "tools/zentara/rom/rom_target.h"

namespace Zentara::Tool {

/// What the verbs that write have in common.
struct WriteOptions : TargetOptions {
    bool dryRun = false;
    bool yes = false;
    bool rebuild = false;
    std::string backup; ///< where the bytes of before go; a name with the time unless set
};

/// --dry-run, --yes and --backup, and the options of the target.
void addWriteOptions(CLI::App& command, WriteOptions& options);
void addRebuildOption(CLI::App& command, WriteOptions& options);

/// A write that was rehearsed.
struct PlannedWrite {
    std::vector<std::string> changes; ///< in words
    bool takesAway = false;           ///< something of before is gone afterwards: needs --yes
    std::vector<FlashWrite> writes;
    FlashImage after;
};

/// The last step of every verb that writes: says what changes, backs up, writes, reads everything back and
/// compares.
class RomWriter {
public:
    RomWriter(const char* verbName, const WriteOptions& wanted, RomTarget& to, Console& output)
        : verb(verbName), options(wanted), target(to), console(output) {}

    /// Brings the target to a content. A change that would cost something else is refused with exit code 8,
    /// unless the content is to be rebuilt. \param formats  whether a target without a storage is formatted
    /// first.
    [[nodiscard]] ExitCode bringTo(const FlashImage& before, const RomContent& wanted, bool formats);
    [[nodiscard]] ExitCode write(const FlashImage& before, const PlannedWrite& plan);

private:
    [[nodiscard]] ExitCode refuse(const FlashImage& before, const RomContent& wanted,
                                  const Rehearsal& rehearsal);
    [[nodiscard]] std::string backUp(const FlashImage& before) const;
    void report(const PlannedWrite& plan, const std::string& backupFile) const;

    const char* const verb;
    const WriteOptions& options;
    RomTarget& target;
    Console& console;
};

/// Puts bytes into a file, whole or not at all. \throws ToolFailure
void saveFile(const std::string& path, const std::string& bytes);
/// All bytes of a file. \throws ToolFailure
[[nodiscard]] std::string loadFile(const std::string& path);

/// What a fresh load of the image finds. \throws ToolFailure with exit code 8 when it holds no storage.
[[nodiscard]] RomContent loadContent(const FlashImage& image, const RomTarget& target);
/// The same, and nothing at all when it holds none.
[[nodiscard]] RomContent loadContentIfAny(const FlashImage& image);

} // namespace Zentara::Tool
