#include <memory>

#include <zentara/utils/format.h>

#include "tools/zentara/calibration_json.h"
#include "tools/zentara/camera_session.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr const char* verbName = "calibration";

struct Options : CameraOptions {
    std::string file;
    std::string other;
    std::string backup;
    bool dryRun = false;
    bool yes = false;
};

CalibrationInternal readCamera(CameraSession& session) {
    CalibrationInternal calibration;
    attempt("read the camera's calibration", [&] { session.parameters().readCalibration(&calibration); });
    return calibration;
}

/// A calibration file: whose calibration it is, and the calibration.
void writeFile(const std::string& path, const CameraSession& session,
               const CalibrationInternal& calibration) {
    Json json = beginJson(verbName);
    json["camera"] = session.identity();
    json["calibration"] = toJson(calibration);
    writeJsonFile(path, json);
}

CalibrationInternal readFile(const std::string& path) {
    const Json json = readJsonFile(path);
    const auto found = json.find("calibration");
    if (!json.is_object() || found == json.end())
        throw ToolFailure(ExitCode_FAILED, Format("'%' has no field 'calibration'") % path);
    if (json.value("schema", Json()) != Json(jsonSchema))
        throw ToolFailure(ExitCode_FAILED, Format("'%' is not of schema %") % path % jsonSchema);
    return calibrationFromJson(*found, "'" + path + "'");
}

ExitCode runExport(const Options& options, Console& console) {
    CameraSession session(verbName, options, console);
    const CalibrationInternal calibration = readCamera(session);
    if (!options.file.empty())
        writeFile(options.file, session, calibration);
    session.finish({{"calibration", toJson(calibration)}}, options.file.empty()
                                                               ? toJson(calibration).dump(2) + '\n'
                                                               : "written: " + options.file + '\n');
    return ExitCode_DONE;
}

ExitCode runImport(const Options& options, Console& console) {
    const CalibrationInternal wanted = asMarshalled(readFile(options.file));
    CameraSession session(verbName, options, console);
    const CalibrationInternal before = readCamera(session);
    Json result{{"before", toJson(before)}, {"calibration", toJson(wanted)}, {"written", false}};
    if (options.dryRun || before == wanted) {
        session.finish(result, before == wanted ? "the camera has this calibration already\n"
                                                : "the camera's calibration would change\n");
        return ExitCode_DONE;
    }
    if (!options.yes)
        throw ToolFailure(ExitCode_USAGE,
                          "this replaces the camera's calibration; say --yes, or --dry-run to see");
    writeFile(options.backup, session, before);
    CalibrationInternal sent = wanted;
    attempt("write the camera's calibration", [&] { session.parameters().writeCalibration(&sent); });
    if (readCamera(session) != wanted)
        throw ToolFailure(
            ExitCode_VERIFICATION,
            Format("the camera does not give back the calibration that was written; '%' has the "
                   "one before") %
                options.backup);
    result["written"] = true;
    result["backup"] = options.backup;
    session.finish(result,
                   "the camera's calibration was replaced; " + options.backup + " has the one before\n");
    return ExitCode_DONE;
}

void printDifference(std::ostream& out, const Json& difference) {
    for (const Json& change : difference)
        out << change["field"].get<std::string>() << ": " << change["left"].dump() << " -> "
            << change["right"].dump() << '\n';
}

/// The fields that are not the same, one by one.
Json differences(const Json& left, const Json& right) {
    const Json flatLeft = left.flatten();
    const Json flatRight = right.flatten();
    Json list = Json::array();
    for (const auto& [field, value] : flatLeft.items()) {
        const Json other = flatRight.value(field, Json());
        if (other != value)
            list.push_back({{"field", field.substr(1)}, {"left", value}, {"right", other}});
    }
    for (const auto& [field, value] : flatRight.items()) {
        if (!flatLeft.contains(field))
            list.push_back({{"field", field.substr(1)}, {"left", Json()}, {"right", value}});
    }
    return list;
}

ExitCode runDiff(const Options& options, Console& console) {
    const CalibrationInternal left = asMarshalled(readFile(options.file));
    CalibrationInternal right;
    if (options.other.empty()) {
        CameraSession session(verbName, options, console);
        right = readCamera(session);
    } else {
        right = asMarshalled(readFile(options.other));
    }
    const Json list = differences(toJson(left), toJson(right));
    if (options.json) {
        Json json = beginJson(verbName);
        json["equal"] = list.empty();
        json["differences"] = list;
        print(console.out, json);
    } else {
        printDifference(console.out, list);
    }
    return list.empty() ? ExitCode_DONE : ExitCode_VERIFICATION;
}

} // namespace

Verb addCalibrationVerb(CLI::App& program) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        program.add_subcommand(verbName, "Moves a depth camera's calibration between camera and file")
            ->group("Verbs");
    command->require_subcommand(1);
    command->footer(
        "A calibration file is JSON: phase delays and temperature compensation. Phase offset and drift\n"
        "compensation do not travel to and from a camera.");

    CLI::App* toFile =
        command->add_subcommand("export", "Reads the camera's calibration, into a file if named");
    toFile->add_option("FILE", options->file, "The calibration file");
    addCameraOptions(*toFile, *options);

    CLI::App* toCamera = command->add_subcommand("import", "Writes a file's calibration into the camera");
    toCamera->add_option("FILE", options->file, "The calibration file")->required();
    addCameraOptions(*toCamera, *options);
    toCamera->add_option("--backup", options->backup, "Where the camera's present calibration is saved first")
        ->type_name("FILE")
        ->default_str("calibration-before.json");
    toCamera->add_flag("--dry-run", options->dryRun, "Only say what would change");
    toCamera->add_flag("--yes", options->yes, "Replace the camera's calibration");

    CLI::App* diff = command->add_subcommand("diff", "Compares a file with another one or with the camera");
    diff->add_option("FILE", options->file, "The calibration file")->required();
    diff->add_option("OTHER", options->other, "Another file; the camera unless given");
    addCameraOptions(*diff, *options);
    diff->footer("Exit code 8 when they differ.");

    options->backup = "calibration-before.json";
    return {command, [options, toFile, toCamera](Console& console) {
                if (toFile->parsed())
                    return runExport(*options, console);
                return toCamera->parsed() ? runImport(*options, console) : runDiff(*options, console);
            }};
}

} // namespace Zentara::Tool
