#include <memory>

#include <CLI/CLI.hpp>

#include "tools/zentara/arguments.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"

namespace Zentara::Tool {
namespace {

struct ExportOptions : TargetOptions {
    bool force = false;
    std::string file;
};

ExitCode runExport(const ExportOptions& options, Console& console) {
    Flash flash = openFlash(options, console);
    const FlashImage image = loadFlash(flash, console);
    const FlashContent content = contentOfFlash(flash, image);
    if (options.file.empty())
        console.out << toJson(content);
    else
        flash.save(options.file, toJson(content), forced(options.force));
    if (!options.file.empty())
        finish(flash, options, console, {{"file", options.file}, {"sections", content.size()}}, {});
    const FlashSurvey survey = surveyOf(image);
    if (const Finding* fault = survey.structuralFault())
        note(console, flash.name() + " is damaged, this is what can be read of it: " + fault->text);
    return Failure::None;
}

struct ImportOptions : WriteOptions {
    std::string file;
    bool keepReadOnly = false;
};

ExitCode runImport(const ImportOptions& options, Console& console) {
    FlashContent wanted = contentFromJson(readFlashFile(options.file), options.file);
    Flash flash = openFlashToWrite(options, options.dryRun, console);
    const FlashImage before = loadFlash(flash, console);
    const FlashContent old = contentOf(before);
    if (options.keepReadOnly)
        for (const std::uint16_t uid : readOnlyConflicts(old, wanted)) {
            wanted[uid] = old.at(uid);
            note(console, sectionText(uid, old.at(uid)) + " is read only and stays");
        }
    ChangeOptions how = options.change;
    how.formats = true;
    return makeChange(flash, flash.plan(before, wanted, how), options, console,
                      "--keep-read-only leaves such sections as they are and imports the others; 'zentara "
                      "rom create' empties the flash, read-only sections and all");
}

} // namespace

Verb addRomExport(CLI::App& rom) {
    auto options = std::make_shared<ExportOptions>();
    CLI::App* command = rom.add_subcommand("export", "Prints the whole content as JSON, without loss");
    addTargetOptions(*command, *options);
    command->add_option("--output", options->file, "Put it into a file instead");
    addForceOption(*command, options->force);
    return {command, [options](Console& console) { return runExport(*options, console); }};
}

Verb addRomImport(CLI::App& rom) {
    auto options = std::make_shared<ImportOptions>();
    CLI::App* command = rom.add_subcommand(
        "import", "Makes a JSON document the whole content: sections that are not in it are erased");
    command->add_option("JSON", options->file, "The document, as 'export' prints it; - for standard input")
        ->required();
    addWriteOptions(*command, *options);
    addRebuildOption(*command, *options);
    addOtherCameraOption(*command, *options);
    command->add_flag("--keep-read-only", options->keepReadOnly,
                      "Leave read-only sections as they are, whatever the document says of them");
    return {command, [options](Console& console) { return runImport(*options, console); }};
}

} // namespace Zentara::Tool
