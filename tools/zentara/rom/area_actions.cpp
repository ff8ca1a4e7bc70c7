#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

ExitCode runCreate(WriteOptions options, Console& console) {
    // a new storage has no header to find
    if (options.area.header == FlashOptions::Header::Auto)
        options.area.header = FlashOptions::Header::Start;
    const auto access = options.dryRun ? Flash::Access::Read : Flash::Access::Write;
    Flash flash = isCamera(options) ? openFlashToWrite(options, options.dryRun, console)
                                    : Flash::create(options.image, options.area, access);
    const FlashImage before = loadFlash(flash, console);
    return makeChange(flash, flash.planFormat(before), options, console);
}

struct BackupOptions : TargetOptions {
    std::string file;
};

struct RestoreOptions : WriteOptions {
    std::string file;
};

ExitCode runBackup(const BackupOptions& options, Console& console) {
    Flash flash = openFlash(options, console);
    const FlashImage image = loadFlash(flash, console);
    flash.backup(options.file, image);
    const bool isFaulty = surveyOf(image).isFaulty();
    if (isFaulty)
        note(console, "something is wrong with " + flash.name() + "; the bytes are kept as they are");
    finish(flash, options, console,
           {{"file", options.file}, {"bytes", image.bytes().size()}, {"faulty", isFaulty}},
           {Format("% bytes of % are in '%'") % static_cast<unsigned long long>(image.bytes().size()) %
            flash.name() % options.file});
    return Failure::None;
}

ExitCode runRestore(const RestoreOptions& options, Console& console) {
    Flash flash = openFlashToWrite(options, options.dryRun, console);
    const FlashImage before = loadFlash(flash, console);
    return makeChange(flash, flash.planRestore(before, options.file, options.change), options, console);
}

} // namespace

Verb addRomCreate(CLI::App& rom) {
    auto options = std::make_shared<WriteOptions>();
    CLI::App* command = rom.add_subcommand(
        "create", "Formats a new image file (64 KiB unless --size says), or a camera's flash");
    addWriteOptions(*command, *options);
    return {command, [options](Console& console) { return runCreate(*options, console); }};
}

Verb addRomBackup(CLI::App& rom) {
    auto options = std::make_shared<BackupOptions>();
    CLI::App* command = rom.add_subcommand("backup", "Copies the bytes of the whole area into a file");
    command->add_option("FILE", options->file, "The file")->required();
    addTargetOptions(*command, *options);
    return {command, [options](Console& console) { return runBackup(*options, console); }};
}

Verb addRomRestore(CLI::App& rom) {
    auto options = std::make_shared<RestoreOptions>();
    CLI::App* command =
        rom.add_subcommand("restore", "Writes back what 'backup' copied; only bytes that differ are sent");
    command->add_option("FILE", options->file, "The file")->required();
    addWriteOptions(*command, *options);
    addOtherCameraOption(
        *command, *options,
        "Even if it is of another camera, or changes a read-only section or the camera's GUID");
    command->add_flag("--damaged", options->change.damaged, "Even if something is wrong with it");
    return {command, [options](Console& console) { return runRestore(*options, console); }};
}

} // namespace Zentara::Tool
