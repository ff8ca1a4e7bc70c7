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

    /// Brings the target to a content. A change of a read-only section is refused with exit code 5. One that would cost
    /// something else is refused with exit code 8, unless the content is to be rebuilt. \param formats  whether a
    /// target without a storage is formatted first.
    [[nodiscard]] ExitCode bringTo(const FlashImage& before, const RomContent& wanted, bool formats);
    [[nodiscard]] ExitCode write(const FlashImage& before, const PlannedWrite& plan);

private:
    [[nodiscard]] ExitCode refuse(const FlashImage& before, const RomContent& wanted,
                                  const Rehearsal& rehearsal);
    [[nodiscard]] std::string backUp(const FlashImage& before) const;
    [[nodiscard]] std::string wayBack(const FlashImage& before, const std::string& backupFile) const;
    void report(const PlannedWrite& plan, const std::string& backupFile) const;

    const char* const verb;
    const WriteOptions& options;
    RomTarget& target;
    Console& console;
};

/// Puts bytes into a file, whole or not at all. \throws ToolFailure, also when the file is the image itself.
void saveFile(const RomTarget& source, const std::string& path, const std::string& bytes);
/// The same for bytes that a camera may be brought back with: they are on the disk when this returns, and nothing that
/// was there before is replaced.
void keepFile(const RomTarget& source, const std::string& path, const Bytes& bytes);
/// All bytes of a file. \throws ToolFailure
[[nodiscard]] std::string loadFile(const std::string& path);

/// The sections that may not be changed, but would not be the same afterwards.
[[nodiscard]] std::vector<std::uint16_t> readOnlyConflicts(const RomContent& before,
                                                           const RomContent& wanted);

/// What a fresh load of the image finds. \throws ToolFailure with exit code 8 when it holds no storage.
[[nodiscard]] RomContent loadContent(const FlashImage& image, const RomTarget& target);
/// The same, and nothing at all when it holds none.
[[nodiscard]] RomContent loadContentIfAny(const FlashImage& image);

} // namespace Zentara::Tool
