#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/rom/rom_target.h"
#include "tools/zentara/rom/rom_verbs.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

std::vector<std::string> linesOf(const FlashSurvey& survey) {
    std::vector<std::string> lines;
    for (const Finding& finding : survey.findings)
        lines.push_back(Format("0x%{:x8}  %  %: %") % finding.address %
                        (finding.isFault ? "WRONG" : "note ") % findingKindName(finding.kind) % finding.text);
    std::size_t sections = 0;
    for (const SurveyedBlock& block : survey.blocks)
        sections += block.section ? 1 : 0;
    lines.push_back(Format("% sections in % blocks: %") % static_cast<unsigned long long>(sections) %
                    static_cast<unsigned long long>(survey.blocks.size()) %
                    (survey.isFaulty() ? "something is wrong" : "all is right"));
    return lines;
}

ExitCode runVerify(const TargetOptions& options, Console& console) {
    Flash flash = openFlash(options, console);
    const FlashSurvey survey = surveyOf(loadFlash(flash, console));
    const Json told = Json::parse(toJson(survey));
    finish(flash, options, console, {{"faulty", told["faulty"]}, {"findings", told["findings"]}},
           linesOf(survey));
    return survey.isFaulty() ? Failure::Verification : Failure::None;
}

struct SalvageOptions : TargetOptions {
    std::string file;
};

ExitCode runSalvage(const SalvageOptions& options, Console& console) {
    Flash flash = openFlash(options, console);
    const FlashSalvage salvage = salvageOf(loadFlash(flash, console));
    for (const std::string& line : salvage.lines)
        tellLine(console.err, line);
    if (!salvage.image)
        throw Failure(Failure::Verification, "cannot salvage " + flash.name(), salvage.whyNot);
    flash.keep(options.file, salvage.image->bytes());
    finish(flash, options, console,
           {{"file", options.file}, {"sections", salvage.content.size()}, {"found", salvage.lines}},
           {Format("% sections of % are in the new image '%'; nothing was changed in %") %
            static_cast<unsigned long long>(salvage.content.size()) % flash.name() % options.file %
            flash.name()});
    return Failure::None;
}

struct DiffOptions : TargetOptions {
    std::string other;
};

FlashContent contentOfImage(TargetOptions options, const std::string& image, Console& console) {
    options.image = image;
    Flash flash = openFlash(options, console);
    return loadContent(flash, console);
}

Json changeJson(const SectionChange& change) {
    constexpr const char* kinds[] = {"added", "replaced", "erased"};
    return {{"uid", change.uid},
            {"kind", kinds[static_cast<int>(change.kind)]},
            {"text", change.text},
            {"values", changesJson(change.values)}};
}

ExitCode runDiff(const DiffOptions& options, Console& console) {
    const FlashContent before = contentOfImage(options, options.image, console);
    const std::vector<SectionChange> changes =
        changesBetween(before, contentOfImage(options, options.other, console));
    if (options.json) {
        Json json = beginJson(console);
        json.update({{"equal", changes.empty()}, {"changes", Json::array()}});
        for (const SectionChange& change : changes)
            json["changes"].push_back(changeJson(change));
        print(console.out, json);
    } else {
        for (const SectionChange& change : changes)
            for (const std::string& line : change.lines())
                printLine(console.out, line);
    }
    return changes.empty() ? Failure::None : Failure::Failed;
}

} // namespace

Verb addRomVerify(CLI::App& rom) {
    auto options = std::make_shared<TargetOptions>();
    CLI::App* command = rom.add_subcommand(
        "verify",
        "Checks every header, checksum, link and place; names what is wrong and ends with exit code 8 then");
    addTargetOptions(*command, *options);
    return {command, [options](Console& console) { return runVerify(*options, console); }};
}

Verb addRomSalvage(CLI::App& rom) {
    auto options = std::make_shared<SalvageOptions>();
    CLI::App* command = rom.add_subcommand(
        "salvage",
        "Searches for whole sections, also where no link leads any more, and puts them into a new image");
    command->add_option("FILE", options->file, "The new image")->required();
    addTargetOptions(*command, *options);
    return {command, [options](Console& console) { return runSalvage(*options, console); }};
}

Verb addRomDiff(CLI::App& rom) {
    auto options = std::make_shared<DiffOptions>();
    CLI::App* command = rom.add_subcommand("diff", "Says what B holds other than A, value by value");
    addTargetOptions(*command, *options);
    command->get_option("IMAGE")->required()->description(
        "A: an image file, or camera:NAME with a name as --camera takes it");
    command->add_option("OTHER", options->other, "B, named in the same way")->required();
    command->footer(
        "Exit code 0 when they hold the same, 1 when they differ, any other for a failure; 1 is one, too,\n"
        "where the reason stands on standard error.");
    return {command, [options](Console& console) { return runDiff(*options, console); }};
}

} // namespace Zentara::Tool
