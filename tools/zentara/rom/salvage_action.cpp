#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "host/flash/flash_survey.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"
#include "tools/zentara/rom/text_lines.h"

namespace Zentara::Tool {
namespace {

struct SalvageOptions : TargetOptions {
    std::string file;
};

/// What was found, and a line about each piece. A section that the chain leads to goes before one that it
/// does not; of several of those with one uid the one nearest to the header's end of the area counts.
struct Salvage {
    FlashContent content;
    std::vector<std::string> lines;

    void add(const SurveyedSection& section, const char* how) {
        const std::string text = sectionText(section.uid, section.content);
        std::string what = how;
        if (section.uid == 0)
            what = "left out: the uid 0 cannot be written";
        else if (!content.emplace(section.uid, section.content).second)
            what = "left out: there is another section of that uid";
        lines.push_back(Utils::Format("0x%{:x8}  %: %") % section.address % text % what);
    }
};

Salvage salvageFrom(const FlashSurvey& survey) {
    Salvage salvage;
    for (auto block = survey.blocks().rbegin(); block != survey.blocks().rend(); ++block)
        if (block->section)
            salvage.add(*block->section, "linked");
    for (const SurveyedSection& section : survey.unreachable())
        salvage.add(section, "found; it was cut off, or erased");
    return salvage;
}

ExitCode runSalvage(const SalvageOptions& options, Console& console) {
    const auto target = RomTarget::open(options, console);
    const FlashImage image = target->load();
    const FlashSurvey survey(image);
    const Salvage salvage = salvageFrom(survey);
    for (const std::string& line : salvage.lines)
        tellLine(console.err, line);
    if (salvage.content.empty())
        throw Failure(Failure::Verification, "no whole section was found in " + target->name());
    const Rehearsal fresh = rebuild(image, salvage.content);
    if (!fresh.isGood())
        throw Failure(Failure::Verification,
                      "what was found does not fit into an image of that size: " +
                          (fresh.refusal ? fresh.refusal->message : fresh.losses.front()));
    keepFile(*target, options.file, fresh.image.bytes());
    if (options.json) {
        Json json = target->beginJson();
        json.update({{"file", options.file}, {"sections", salvage.content.size()}, {"found", salvage.lines}});
        print(console.out, json);
        return Failure::None;
    }
    printLine(console.out,
              Utils::Format("% sections of % are in the new image '%'; nothing was changed in %") %
                  static_cast<unsigned long long>(salvage.content.size()) % target->name() % options.file %
                  target->name());
    return Failure::None;
}

} // namespace

Verb addRomSalvage(CLI::App& rom) {
    auto options = std::make_shared<SalvageOptions>();
    CLI::App* command = rom.add_subcommand(
        "salvage",
        "Searches for whole sections, also where no link leads any more, and puts them into a new image");
    command->add_option("FILE", options->file, "The new image")->required();
    addTargetOptions(*command, *options);
    return {command, [options](Console& console) { return runSalvage(*options, console); }};
}

} // namespace Zentara::Tool
