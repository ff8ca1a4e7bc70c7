#include <memory>

#include <CLI/CLI.hpp>

#include "tools/zentara/arguments.h"
#include "tools/zentara/rom/rom_target.h"
#include "tools/zentara/rom/rom_verbs.h"

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
    if (options.json && !options.file.empty()) {
        Json told = beginJson(flash, console);
        told.update({{"file", options.file}, {"sections", content.size()}});
        print(console.out, told);
    }
    const FlashSurvey survey = surveyOf(image);
    if (const Finding* fault = survey.structuralFault())
        note(console, flash.name() + " is damaged, this is what can be read of it: " + fault->text);
    return Failure::None;
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

} // namespace Zentara::Tool
