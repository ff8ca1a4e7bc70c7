#include "tools/zentara/rom/rom_write.h"

#include <optional>
#include <utility>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/progress.h"
#include "tools/zentara/supervisor.h"
#include "utils/platform/program.h"

namespace Zentara::Tool {
namespace {

using Obstacle = FlashChange::Obstacle;
using Utils::Format;

/// The library says what stands in the way of a change; with which option one goes on all the same, the tool knows.
std::string refusalHelp(const FlashChange& change, const std::string& readOnlyHelp) {
    switch (change.obstacle) {
    case Obstacle::None:
        break;
    case Obstacle::ReadOnly:
        return readOnlyHelp;
    case Obstacle::OtherCamera:
        return "--other-camera writes it all the same";
    case Obstacle::Damaged:
        return "--damaged restores it as it is";
    case Obstacle::Impossible:
        return change.rebuildHelps
                   ? "the content fits into a freshly formatted image: --rebuild writes it there"
                   : "";
    case Obstacle::Costly:
        const std::string rebuild =
            change.rebuildHelps ? "--rebuild writes the content that can be read, with this change, into a "
                                  "freshly formatted image"
                                : "";
        if (!change.salvageHelps)
            return rebuild;
        return rebuild + (rebuild.empty() ? "" : "; ") +
               "'zentara rom salvage' finds whole sections that no link leads to, and changes nothing";
    }
    return {};
}

/// Where the bytes of before are, and in a line of its own the command that brings them back.
std::vector<std::string> wayBack(const Flash& flash, const FlashChange& change, const WriteOptions& options,
                                 const std::string& backupFile) {
    std::string command = "zentara rom restore " + fileWord(backupFile);
    if (const std::optional<CameraInfo>& camera = flash.owner()) {
        const std::string name = options.direct           ? options.camera
                                 : camera->serial.empty() ? camera->path
                                                          : camera->serial;
        const auto add = [&command](const char* option, const std::string& value) {
            if (!value.empty())
                command += option + Utils::Platform::shellWord(value);
        };
        command += options.direct ? " --direct" : "";
        add(" --camera ", name);
        add(" --controller ", options.controller);
        for (const std::string& plugin : options.plugins)
            add(" --plugin ", plugin);
    } else {
        command += " " + fileWord(flash.file());
    }
    const FlashArea& area = change.before.area();
    if (options.area.start || options.area.size != 0)
        command += Format(" --start % --size %") % area.start % area.size;
    if (surveyOf(change.before).isFaulty())
        command += " --damaged";
    if (!change.foreign.empty())
        command += " --other-camera";
    return {"the bytes of before are in '" + backupFile + "'; this puts them back:", command + " --yes"};
}

void report(const Flash& flash, const FlashChange& change, const WriteOptions& options,
            const std::string& backupFile, Console& console) {
    const auto bytes = static_cast<unsigned long long>(change.bytes());
    const auto writes = static_cast<unsigned long long>(change.writes.size());
    const bool isWritten = !options.dryRun && bytes > 0;
    Json result{{"changes", change.lines}, {"writes", writes}, {"bytes", bytes}, {"written", isWritten}};
    if (!backupFile.empty())
        result["backup"] = backupFile;
    std::vector<std::string> lines = change.lines;
    if (bytes == 0)
        lines.emplace_back("nothing changes");
    else if (!isWritten)
        lines.push_back(Format("dry run: % bytes in % writes would go to %, nothing was written") % bytes %
                        writes % flash.name());
    else
        lines.push_back(Format("% bytes in % writes to %, read back and verified%") % bytes % writes %
                        flash.name() %
                        (backupFile.empty() ? "" : "; those of before are in '" + backupFile + "'"));
    finish(flash, options, console, result, lines);
}

} // namespace

void addWriteOptions(CLI::App& command, WriteOptions& options) {
    addTargetOptions(command, options);
    command.add_flag("--dry-run", options.dryRun,
                     "Try it on a copy and say what would change; write nothing");
    command.add_flag("--yes", options.yes, "Go on although something of before is gone afterwards");
    command.add_option("--backup", options.backup,
                       "Where the bytes of before go; a name with the time unless set");
}

void addOtherCameraOption(CLI::App& command, WriteOptions& options, const char* meaning) {
    command.add_flag("--other-camera", options.change.otherCamera, meaning);
}

void addRebuildOption(CLI::App& command, WriteOptions& options) {
    command.add_flag("--rebuild", options.change.rebuild,
                     "Write the whole content into a freshly formatted image");
}

/// Every verb that writes ends here:
///
///     refused by the plan ---------------------------> Failure, with the option that helps
///     nothing to write, or --dry-run ----------------> what would change is said
///     something of before goes, without --yes -------> Failure, with what goes, line by line
///     else: backup kept --> written --> read back ---> what has changed is said
///
/// Only from the backup until all is written can a camera hold half of the change. Who ends the process meanwhile,
/// or the failure, then says how to get back; an image file is replaced as a whole, or not at all.
ExitCode makeChange(Flash& flash, const FlashChange& change, const WriteOptions& options, Console& console,
                    const std::string& readOnlyHelp) {
    if (const std::optional<Failure>& refusal = change.refusal)
        throw Failure(refusal->code(), refusal->message(), refusal->cause(),
                      refusalHelp(change, readOnlyHelp), refusal->details());
    if (change.writes.empty() || options.dryRun) {
        report(flash, change, options, {}, console);
        return Failure::None;
    }
    if (change.takesAway && !options.yes)
        throw Failure(Failure::Usage,
                      "nothing was written to " + flash.name() + " yet; what would become of it:", {},
                      "--yes does it, --dry-run only tries it", change.lines);
    ApplyOptions how;
    how.backup = options.backup;
    std::vector<std::string> back;
    std::optional<HalfDone> untilAllIsWritten;
    how.kept = [&](const std::string& file) {
        back = wayBack(flash, change, options, file);
        if (!flash.owner())
            return; // a file is as it was until all is written
        note(console, back.front());
        tellLine(console.err, "  " + back.back());
        std::vector<std::string> lines{flash.name() + " may have a part of the change"};
        lines.insert(lines.end(), back.begin(), back.end());
        untilAllIsWritten.emplace(std::move(lines));
    };
    std::string kept;
    try {
        kept = flash.apply(change, how, shownProgress("written and read back", console));
    } catch (const Failure& failure) {
        throw Failure(failure.code(), failure.message(), failure.cause(), failure.remedy(),
                      failure.details().empty() ? failure.details() : back);
    }
    untilAllIsWritten.reset();
    report(flash, change, options, kept, console);
    return Failure::None;
}

} // namespace Zentara::Tool
