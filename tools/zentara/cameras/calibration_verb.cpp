#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <zentara/host/camera_files.h>
#include <zentara/host/camera_report.h>
#include <zentara/host/output_file.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/camera_json.h"
#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/interrupt.h"
#include "tools/zentara/supervisor.h"
#include "utils/platform/program.h"

namespace Zentara::Tool {
namespace {

struct CalibrationOptions : CameraOptions {
    std::string file;
    std::string other;
    std::string backup;
    bool dryRun = false;
    bool yes = false;
    bool force = false;
};

std::string textOf(const std::vector<ValueChange>& changes) {
    std::string lines;
    for (const ValueChange& change : changes)
        lines += change.text() + '\n';
    return lines;
}

/// What the node applies comes from the camera's flash, and need not be what its parameter back-end holds.
Json appliedJson(const CameraSession& session) {
    const auto applied = session.camera().appliedCalibration();
    return applied
               ? Json{{"phaseDelay", applied->getPhaseDelay()}, {"phaseDelay2", applied->getPhaseDelay2()}}
               : Json();
}

void tellApplied(const Json& applied, const CalibrationInternal& held, Console& console) {
    if (!applied.is_null() &&
        (applied["phaseDelay"] != held.getPhaseDelay() || applied["phaseDelay2"] != held.getPhaseDelay2()))
        note(console,
             "this is the calibration of the parameter back-end; the depth node applies the phase delays " +
                 applied["phaseDelay"].dump() + " and " + applied["phaseDelay2"].dump() +
                 " of the camera's flash, which 'zentara rom export' shows");
}

ExitCode runExport(const CalibrationOptions& options, Console& console) {
    return withCamera(options, console, [&](CameraSession& session) {
        const CalibrationInternal calibration = session.camera().readCalibration();
        const std::string document = calibrationDocument(session.camera().info(), calibration);
        const Json applied = appliedJson(session);
        tellApplied(applied, calibration, console);
        std::ostringstream text;
        if (options.file.empty()) {
            print(text, Json::parse(document));
        } else {
            writeOutputFile(options.file, document, forced(options.force));
            text << "written: " << printable(options.file) << '\n';
        }
        session.finish({{"calibration", Json::parse(toJson(calibration))},
                        {"applied", applied},
                        {"source", Json::parse(toJson(session.camera().sources()))}},
                       text.str());
        return Failure::None;
    });
}

/// Where the calibration of before is, and in a line of its own the command that brings it back.
std::vector<std::string> wayBack(const CameraSession& session, const std::string& backup) {
    const std::string serial = session.camera().info().serial;
    return {"the calibration of before is in '" + backup + "'; this puts it back:",
            "zentara calibration import " + fileWord(backup) +
                (serial.empty() ? "" : " --camera " + Utils::Platform::shellWord(serial)) + " --yes"};
}

/// Saves what the camera has, writes the new calibration and reads it back.
void replaceCalibration(CameraSession& session, const CalibrationInternal& before,
                        const CalibrationInternal& wanted, const std::string& backup) {
    writeOutputFile(backup, calibrationDocument(session.camera().info(), before),
                    {.ifThere = IfThere::Refuse, .hint = "name another file with --backup"});
    const std::vector<std::string> back = wayBack(session, backup);
    const InterruptWatch untilItIsWritten; // half of a change is worse than a late end
    const HalfDone halfDone(back);
    try {
        session.camera().writeCalibration(wanted);
    } catch (const Failure& failure) {
        throw Failure(failure.code(), failure.message(), failure.cause(), failure.remedy(), back);
    }
}

ExitCode importInto(CameraSession& session, const StoredCalibration& stored,
                    const CalibrationOptions& options, Console& console) {
    const CalibrationInternal& wanted = stored.calibration;
    const CalibrationInternal before = session.camera().readCalibration();
    session.noteOtherCamera(stored.serialNumber);
    const std::vector<ValueChange> changes = changesBetween(before, wanted);
    Json result{{"diff", changesJson(changes)},
                {"calibration", Json::parse(toJson(wanted))},
                {"written", false},
                {"lasts", Json()}};
    if (options.dryRun || before == wanted) {
        session.finish(result, before == wanted
                                   ? "the camera has this calibration already\n"
                                   : "the camera's calibration would change:\n" + textOf(changes));
        return Failure::None;
    }
    if (!options.yes)
        throw Failure(Failure::Usage,
                      "this replaces the camera's calibration; say --yes, or --dry-run to see");
    const std::string backup =
        options.backup.empty() ? unusedPath("calibration-before", "json") : options.backup;
    replaceCalibration(session, before, wanted, backup);
    session.camera().reconnectParameters(); // what another program would find
    const bool lasts = session.camera().readCalibration() == wanted;
    result["written"] = true;
    result["lasts"] = lasts;
    result["backup"] = backup;
    if (!lasts)
        note(console, "the camera keeps this calibration only while this program runs; it is not written to "
                      "its flash, which 'zentara rom set' changes");
    session.finish(result, textOf(changes) + "the camera's calibration was replaced and read back; " +
                               printable(backup) + " has the one before\n");
    return Failure::None;
}

ExitCode runImport(CalibrationOptions options, Console& console) {
    options.writes = true;
    const StoredCalibration stored = readCalibrationFile(options.file);
    return withCamera(options, console,
                      [&](CameraSession& session) { return importInto(session, stored, options, console); });
}

ExitCode runDiff(const CalibrationOptions& options, Console& console) {
    const CalibrationInternal left = readCalibrationFile(options.file).calibration;
    CalibrationInternal right;
    Json camera; // what only a camera has
    if (!options.other.empty())
        right = readCalibrationFile(options.other).calibration;
    else
        static_cast<void>(withCamera(options, console, [&](CameraSession& session) {
            right = session.camera().readCalibration();
            const Json applied = appliedJson(session);
            tellApplied(applied, right, console);
            camera = {{"camera", cameraJson(session.camera().info())},
                      {"applied", applied},
                      {"source", Json::parse(toJson(session.camera().sources()))}};
            return Failure::None;
        }));
    const std::vector<ValueChange> list = changesBetween(left, right);
    if (options.json) {
        Json json = beginJson(console);
        json.update({{"equal", list.empty()}, {"diff", changesJson(list)}});
        if (!camera.is_null())
            json.update(camera);
        print(console.out, json);
    } else {
        console.out << textOf(list);
    }
    return list.empty() ? Failure::None : Failure::Failed;
}

} // namespace

Verb addCalibrationVerb(CLI::App& program) {
    auto options = std::make_shared<CalibrationOptions>();
    CLI::App* command =
        program.add_subcommand("calibration", "Moves a depth camera's calibration between camera and file")
            ->group("Verbs");
    command->require_subcommand(1);
    command->footer(
        "A calibration file is JSON: phase delays and temperature compensation. Phase offset and drift\n"
        "compensation do not travel to and from a camera.");

    CLI::App* toFile =
        command->add_subcommand("export", "Reads the camera's calibration, into a file if named");
    toFile->add_option("FILE", options->file, "The calibration file; standard output unless named");
    toFile->add_flag("--force", options->force, "Replace a file that is there already");
    addCameraOptions(*toFile, *options);

    CLI::App* toCamera = command->add_subcommand("import", "Writes a file's calibration into the camera");
    toCamera->add_option("FILE", options->file, "The calibration file; - for standard input")->required();
    addCameraOptions(*toCamera, *options);
    toCamera->add_option("--backup", options->backup, "Where the camera's present calibration is saved first")
        ->type_name("FILE")
        ->default_str("calibration-before.json, or -2, -3 and so on where that is taken");
    toCamera->add_flag("--dry-run", options->dryRun, "Only say what would change");
    toCamera->add_flag("--yes", options->yes, "Replace the camera's calibration");

    CLI::App* diff = command->add_subcommand("diff", "Compares a file with another one or with the camera");
    diff->add_option("FILE", options->file, "The calibration file; - for standard input")->required();
    CLI::Option* other = diff->add_option("OTHER", options->other, "Another file; the camera unless given");
    addCameraOptions(*diff, *options);
    diff->get_option("--camera")->excludes(other);
    diff->footer(
        "Exit code 0 when they are the same, 1 when they differ, any other for a failure; 1 is one, too,\n"
        "where the reason stands on standard error.");

    return {command, [options, toFile, toCamera](Console& console) {
                if (toFile->parsed())
                    return runExport(*options, console);
                return toCamera->parsed() ? runImport(*options, console) : runDiff(*options, console);
            }};
}

} // namespace Zentara::Tool
