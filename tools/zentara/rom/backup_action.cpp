#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "host/flash/flash_survey.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"
#include "tools/zentara/rom/text_lines.h"

namespace Zentara::Tool {
namespace {

struct BackupOptions : TargetOptions {
    std::string file;
};

struct RestoreOptions : WriteOptions {
    std::string file;
    bool damaged = false;
};

ExitCode runBackup(const BackupOptions& options, Console& console) {
    const auto target = RomTarget::open(options, console);
    const FlashImage image = target->load();
    keepBackup(*target, options.file, image);
    const FlashSurvey survey(image);
    if (survey.isFaulty())
        note(console, "something is wrong with " + target->name() + "; the bytes are kept as they are");
    if (options.json) {
        Json json = target->beginJson();
        json.update({{"file", options.file}, {"bytes", image.bytes().size()}, {"faulty", survey.isFaulty()}});
        print(console.out, json);
    } else {
        printLine(console.out, Utils::Format("% bytes of % are in '%'") %
                                   static_cast<unsigned long long>(image.bytes().size()) % target->name() %
                                   options.file);
    }
    return Failure::None;
}

FlashImage imageFromFile(const RestoreOptions& options, const FlashArea& area) {
    const std::string bytes = loadFile(options.file);
    if (bytes.size() != area.size)
        throw Failure(Failure::Failed, Utils::Format("'%' has % bytes, the flash area has %") % options.file %
                                           static_cast<unsigned long long>(bytes.size()) % area.size);
    const FlashImage image(area, Bytes(bytes.begin(), bytes.end()));
    FlashArea mirrored =
        area; // the flash that it goes to may hold nothing that tells where the header stands
    mirrored.headerAtStart = !area.headerAtStart;
    const FlashImage other(mirrored, image.bytes());
    const bool isMirrored = !FlashSurvey(image).header() && FlashSurvey(other).header();
    return isMirrored ? other : image;
}

/// What says that a backup is not of the camera that it goes to.
std::vector<std::string> foreignLines(const RestoreOptions& options, const RomTarget& target,
                                      const FlashContent& before, const FlashContent& wanted) {
    std::vector<std::string> lines = foreignChanges(before, wanted);
    const std::string from = serialOfBackup(options.file);
    const auto camera = target.camera();
    if (camera && !from.empty() && !camera->serial.empty() && from != camera->serial)
        lines.insert(lines.begin(),
                     "it is of camera " + printable(from) + ", this one is " + printable(camera->serial));
    return lines;
}

ExitCode runRestore(const RestoreOptions& options, Console& console) {
    const auto target = RomTarget::openToWrite(options, options.dryRun, console);
    const FlashImage before = target->load();
    FlashImage wanted = imageFromFile(options, before.area());
    const FlashSurvey survey(wanted);
    if (survey.isFaulty() && !options.damaged) {
        std::vector<std::string> faults;
        for (const Finding& finding : survey.findings())
            if (finding.isFault)
                faults.push_back(finding.text);
        throw Failure(Failure::Verification,
                      "refused, nothing was written; '" + options.file + "' is damaged:", {},
                      "--damaged restores it as it is", faults);
    }
    const FlashContent old = loadContentIfAny(before);
    const FlashContent fresh = loadContentIfAny(wanted);
    const std::vector<std::string> foreign = foreignLines(options, *target, old, fresh);
    if (!foreign.empty() && !options.otherCamera)
        throw Failure(Failure::Usage,
                      "refused, nothing was written: '" + options.file + "' looks like another camera's:", {},
                      "--other-camera restores it all the same", foreign);
    PlannedWrite plan{foreign, !foreign.empty(), !foreign.empty(), differences(before, wanted), wanted};
    for (const ContentChange& change : changesBetween(old, fresh)) {
        for (std::string& line : change.lines())
            plan.changes.push_back(std::move(line));
        plan.takesAway |= change.kind != ContentChange::Kind::Added;
    }
    return RomWriter(options, *target, console).write(before, plan);
}

} // namespace

Verb addRomBackup(CLI::App& rom) {
    auto options = std::make_shared<BackupOptions>();
    CLI::App* command = rom.add_subcommand("backup", "Copies the bytes of the whole area into a file");
    command->add_option("FILE", options->file, "The file")->required();
    addTargetOptions(*command, *options);
    return {command, [options](Console& console) { return runBackup(*options, console); }};
}

Verb addRomRestore(CLI::App& rom) {
    auto options = std::make_shared<RestoreOptions>();
    CLI::App* command =
        rom.add_subcommand("restore", "Writes back what 'backup' copied; only bytes that differ are sent");
    command->add_option("FILE", options->file, "The file")->required();
    addWriteOptions(*command, *options);
    addOtherCameraOption(
        *command, *options,
        "Even if it is of another camera, or changes a read-only section or the camera's GUID");
    command->add_flag("--damaged", options->damaged, "Even if something is wrong with it");
    return {command, [options](Console& console) { return runRestore(*options, console); }};
}

} // namespace Zentara::Tool
