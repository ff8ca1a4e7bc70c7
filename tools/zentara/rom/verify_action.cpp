#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/rom/rom_target.h"
#include "tools/zentara/rom/rom_verbs.h"

namespace Zentara::Tool {
namespace {

void printJson(const FlashSurvey& survey, const Flash& flash, Console& console) {
    Json json = beginJson(flash, console);
    json.update({{"faulty", survey.isFaulty()}, {"findings", Json::array()}});
    for (const Finding& finding : survey.findings)
        json["findings"].push_back({{"address", finding.address},
                                    {"kind", findingKindName(finding.kind)},
                                    {"fault", finding.isFault},
                                    {"text", finding.text}});
    print(console.out, json);
}

void printText(const FlashSurvey& survey, std::ostream& out) {
    for (const Finding& finding : survey.findings)
        printLine(out, Utils::Format("0x%{:x8}  %  %: %") % finding.address %
                           (finding.isFault ? "WRONG" : "note ") % findingKindName(finding.kind) %
                           finding.text);
    std::size_t sections = 0;
    for (const SurveyedBlock& block : survey.blocks)
        sections += block.section ? 1 : 0;
    printLine(out, Utils::Format("% sections in % blocks: %") % static_cast<unsigned long long>(sections) %
                       static_cast<unsigned long long>(survey.blocks.size()) %
                       (survey.isFaulty() ? "something is wrong" : "all is right"));
}

ExitCode runVerify(const TargetOptions& options, Console& console) {
    Flash flash = openFlash(options, console);
    const FlashSurvey survey = surveyOf(loadFlash(flash, console));
    if (options.json)
        printJson(survey, flash, console);
    else
        printText(survey, console.out);
    return survey.isFaulty() ? Failure::Verification : Failure::None;
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

} // namespace Zentara::Tool
