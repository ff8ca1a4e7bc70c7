#include <memory>

#include <CLI/CLI.hpp>

#include "host/flash/content_json.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"

namespace Zentara::Tool {
namespace {

struct ImportOptions : WriteOptions {
    std::string file;
    bool keepReadOnly = false;
};

FlashContent contentFromFile(const std::string& file) {
    try {
        return contentFromJson(parseJson(loadFile(file)));
    } catch (const JsonPlaceError& failure) {
        throw Failure(Failure::Failed, "'" + file + "': " + failure.what());
    }
}

ExitCode runImport(const ImportOptions& options, Console& console) {
    FlashContent wanted = contentFromFile(options.file);
    const auto target = RomTarget::openToWrite(options, options.dryRun, console);
    const FlashImage before = target->load();
    const FlashContent old = loadContentIfAny(before);
    for (const std::uint16_t uid :
         options.keepReadOnly ? readOnlyConflicts(old, wanted) : std::vector<std::uint16_t>()) {
        wanted[uid] = old.at(uid);
        note(console, sectionText(uid, old.at(uid)) + " is read only and stays");
    }
    try {
        return RomWriter(options, *target, console).bringTo(before, wanted, true);
    } catch (const Failure& failure) {
        if (readOnlyConflicts(old, wanted).empty())
            throw;
        throw Failure(failure.code(), failure.message(), failure.cause(),
                      "--keep-read-only leaves such sections as they are and imports the others; 'zentara "
                      "rom create' empties the flash, read-only sections and all",
                      failure.details());
    }
}

} // namespace

Verb addRomImport(CLI::App& rom) {
    auto options = std::make_shared<ImportOptions>();
    CLI::App* command = rom.add_subcommand(
        "import", "Makes a JSON document the whole content: sections that are not in it are erased");
    command->add_option("JSON", options->file, "The document, as 'export' prints it")->required();
    addWriteOptions(*command, *options);
    addRebuildOption(*command, *options);
    addOtherCameraOption(*command, *options);
    command->add_flag("--keep-read-only", options->keepReadOnly,
                      "Leave read-only sections as they are, whatever the document says of them");
    return {command, [options](Console& console) { return runImport(*options, console); }};
}

} // namespace Zentara::Tool
