#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/rom/rom_target.h"
#include "tools/zentara/rom/rom_verbs.h"

namespace Zentara::Tool {
namespace {

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
    if (options.json) {
        Json json = beginJson(flash, console);
        json.update({{"file", options.file}, {"sections", salvage.content.size()}, {"found", salvage.lines}});
        print(console.out, json);
        return Failure::None;
    }
    printLine(console.out,
              Utils::Format("% sections of % are in the new image '%'; nothing was changed in %") %
                  static_cast<unsigned long long>(salvage.content.size()) % flash.name() % options.file %
                  flash.name());
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
