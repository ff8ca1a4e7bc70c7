#pragma once

#include <string>
#include <vector>

#include "host/flash/rehearsal.h"
#include "tools/zentara/rom/rom_target.h"

namespace Zentara::Tool {

/// What the verbs that write have in common.
struct WriteOptions : TargetOptions {
    bool dryRun = false;
    bool yes = false;
    bool rebuild = false;
    bool otherCamera = false;
    std::string backup; ///< where the bytes of before go; a name with the time unless set
};

/// --dry-run, --yes and --backup, and the options of the target.
void addWriteOptions(CLI::App& command, WriteOptions& options);
void addRebuildOption(CLI::App& command, WriteOptions& options);
/// --other-camera: also what only another camera has. \param meaning what that is to the verb, for the help
void addOtherCameraOption(CLI::App& command, WriteOptions& options,
                          const char* meaning = "Even if the camera's GUID changes");
void addForceOption(CLI::App& command, bool& force);

/// A write that was rehearsed.
struct PlannedWrite {
    std::vector<std::string> changes; ///< in words
    bool takesAway = false;           ///< something of before is gone afterwards: needs --yes
    bool isForeign = false;           ///< what only another camera has is put in, or taken out again
    std::vector<FlashWrite> writes;
    FlashImage after;
};

/// The last step of every verb that writes: says what changes, backs up, writes, reads everything back and
/// compares.
class RomWriter {
public:
    RomWriter(const WriteOptions& wanted, RomTarget& to, Console& output)
        : options(wanted), target(to), console(output) {}

    /// Brings the target to a content. A change of a read-only section is refused with exit code 5. One that would cost
    /// something else is refused with exit code 8, unless the content is to be rebuilt. \param formats  whether a
    /// target without a storage is formatted first.
    [[nodiscard]] ExitCode bringTo(const FlashImage& before, const FlashContent& wanted, bool formats);
    [[nodiscard]] ExitCode write(const FlashImage& before, const PlannedWrite& plan);

private:
    [[noreturn]] void refuse(const FlashImage& before, const FlashContent& wanted,
                             const Rehearsal& rehearsal);
    [[nodiscard]] std::string backUp(const FlashImage& before) const;
    [[nodiscard]] std::vector<std::string> wayBack(const FlashImage& before, const std::string& backupFile,
                                                   bool isForeign) const;
    void report(const PlannedWrite& plan, const std::string& backupFile) const;

    const WriteOptions& options;
    RomTarget& target;
    Console& console;
};

/// Puts bytes into a file, whole or not at all. \throws Failure, also when the file is the image itself, or is there
/// already and is not to be replaced.
void saveFile(const RomTarget& source, const std::string& path, const std::string& bytes, bool force);
/// The same for bytes that a camera may be brought back with: nothing that was there before is replaced, and who may not
/// read the image may not read this either.
void keepFile(const RomTarget& source, const std::string& path, const Bytes& bytes);
/// Keeps a backup of the area, and beside that of a camera, in FILE.json, whose it is. \throws Failure
void keepBackup(const RomTarget& source, const std::string& path, const FlashImage& image);
/// The serial number of the camera that a backup is of; empty when the file beside it is not there or does not say.
/// \throws Failure when it is there and cannot be read
[[nodiscard]] std::string serialOfBackup(const std::string& path);
/// All bytes of a file. \throws Failure
[[nodiscard]] std::string loadFile(const std::string& path);

/// The sections that may not be changed, but would not be the same afterwards.
[[nodiscard]] std::vector<std::uint16_t> readOnlyConflicts(const FlashContent& before,
                                                           const FlashContent& wanted);

/// What only another camera can have in its flash: read-only sections that are others, another GUID. One line each.
[[nodiscard]] std::vector<std::string> foreignChanges(const FlashContent& before, const FlashContent& after);

/// What a fresh load of the image finds. \throws Failure with exit code 8 when it holds no storage.
[[nodiscard]] FlashContent loadContent(const FlashImage& image, const RomTarget& target);
/// The same, and nothing at all when it holds none.
[[nodiscard]] FlashContent loadContentIfAny(const FlashImage& image);

} // namespace Zentara::Tool
