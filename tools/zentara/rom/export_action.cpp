#include <memory>
#include <sstream>

#include <CLI/CLI.hpp>

#include "host/flash/content_json.h"
#include "host/flash/flash_survey.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"

namespace Zentara::Tool {
namespace {

struct ExportOptions : TargetOptions {
    bool force = false;
    std::string file;
};

ExitCode runExport(const ExportOptions& options, Console& console) {
    const auto target = RomTarget::open(options, console);
    const FlashImage image = target->load();
    const Json json = contentToJson(loadContent(image, *target));
    std::ostringstream text;
    print(text, json);
    if (options.file.empty())
        console.out << text.str();
    else
        saveFile(*target, options.file, text.str(), options.force);
    if (options.json && !options.file.empty()) {
        Json told = target->beginJson();
        told.update({{"file", options.file}, {"sections", json["sections"].size()}});
        print(console.out, told);
    }
    const FlashSurvey survey(image);
    if (const Finding* fault = survey.structuralFault())
        note(console, target->name() + " is damaged, this is what can be read of it: " + fault->text);
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
