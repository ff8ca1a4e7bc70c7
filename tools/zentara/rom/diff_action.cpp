#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "host/flash/rehearsal.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"
#include "tools/zentara/rom/text_lines.h"

namespace Zentara::Tool {
namespace {

struct DiffOptions : TargetOptions {
    std::string other;
};

FlashContent contentOfImage(TargetOptions options, const std::string& image, Console& console) {
    options.image = image;
    const auto target = RomTarget::open(options, console);
    return loadContent(target->load(), *target);
}

ExitCode runDiff(const DiffOptions& options, Console& console) {
    const FlashContent before = contentOfImage(options, options.image, console);
    const FlashContent after = contentOfImage(options, options.other, console);
    Json changes = Json::array();
    for (const ContentChange& change : changesBetween(before, after)) {
        changes.push_back(change.json());
        for (const std::string& line : options.json ? std::vector<std::string>() : change.lines())
            printLine(console.out, line);
    }
    if (options.json) {
        Json json = beginJson(console);
        json.update({{"equal", changes.empty()}, {"changes", changes}});
        print(console.out, json);
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
