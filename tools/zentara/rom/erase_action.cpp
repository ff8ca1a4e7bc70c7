#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"

namespace Zentara::Tool {
namespace {

struct EraseOptions : WriteOptions {
    std::uint16_t uid = 0;
};

ExitCode runErase(const EraseOptions& options, Console& console) {
    Flash flash = openFlashToWrite(options, options.dryRun, console);
    const FlashImage before = loadFlash(flash, console);
    FlashContent wanted = contentOfFlash(flash, before);
    if (wanted.erase(options.uid) == 0)
        throw Failure(Failure::Failed,
                      Utils::Format("%: Cannot erase section - % is not a valid section uid") % flash.name() %
                          options.uid);
    return makeChange(flash, flash.plan(before, wanted, options.change), options, console);
}

} // namespace

Verb addRomErase(CLI::App& rom) {
    auto options = std::make_shared<EraseOptions>();
    CLI::App* command = rom.add_subcommand("erase", "Erases one section");
    command->add_option("UID", options->uid, "Which one")->required();
    addWriteOptions(*command, *options);
    addRebuildOption(*command, *options);
    return {command, [options](Console& console) { return runErase(*options, console); }};
}

} // namespace Zentara::Tool
