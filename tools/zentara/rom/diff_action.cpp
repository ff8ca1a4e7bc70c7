#include <memory>

#include <CLI/CLI.hpp>

#include "tools/zentara/rom/rom_target.h"
#include "tools/zentara/rom/rom_verbs.h"

namespace Zentara::Tool {
namespace {

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
    Json values = Json::array();
    for (const ValueChange& value : change.values)
        values.push_back({{"path", value.path},
                          {"before", Json::parse(value.before)},
                          {"after", Json::parse(value.after)}});
    return {{"uid", change.uid},
            {"kind", kinds[static_cast<int>(change.kind)]},
            {"text", change.text},
            {"values", values}};
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

Verb addRomDiff(CLI::App& rom) {
    auto options = std::make_shared<DiffOptions>();
    CLI::App* command = rom.add_subcommand("diff", "Says what B holds other than A, value by value");
    addTargetOptions(*command, *options);
    command->get_option("IMAGE")->required();
    command->add_option("OTHER", options->other, "B: a file, or camera:CHIP")->required();
    command->footer(
        "Exit code 0 when they hold the same, 1 when they differ, any other for a failure; 1 is one, too,\n"
        "where the reason stands on standard error.");
    return {command, [options](Console& console) { return runDiff(*options, console); }};
}

} // namespace Zentara::Tool
