#include <memory>

#include <CLI/CLI.hpp>

#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"

namespace Zentara::Tool {
namespace {

ExitCode runCreate(WriteOptions options, Console& console) {
    if (options.area.header == FlashOptions::Header::Auto)
        options.area.header = FlashOptions::Header::Start;
    const auto access = options.dryRun ? Flash::Access::Read : Flash::Access::Write;
    Flash flash = isCamera(options) ? openFlashToWrite(options, options.dryRun, console)
                                    : Flash::create(options.image, options.area, access);
    const FlashImage before = loadFlash(flash, console);
    return makeChange(flash, flash.planFormat(before), options, console);
}

} // namespace

Verb addRomCreate(CLI::App& rom) {
    auto options = std::make_shared<WriteOptions>();
    CLI::App* command = rom.add_subcommand(
        "create", "Formats a new image file (64 KiB unless --size says), or a camera's flash");
    addWriteOptions(*command, *options);
    return {command, [options](Console& console) { return runCreate(*options, console); }};
}

} // namespace Zentara::Tool
