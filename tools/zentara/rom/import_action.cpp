#include <memory>

#include "tools/zentara/rom/rom_json.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"

namespace Zentara::Tool {
namespace {

struct ImportOptions : WriteOptions {
    std::string file;
};

RomContent contentFromFile(const std::string& file) {
    try {
        return contentFromJson(parseJson(loadFile(file)));
    } catch (const RomJsonError& failure) {
        throw ToolFailure(ExitCode_FAILED, "'" + file + "': " + failure.what());
    }
}

ExitCode runImport(const ImportOptions& options, Console& console) {
    const RomContent wanted = contentFromFile(options.file);
    const auto target = RomTarget::open(options, console);
    const FlashImage before = target->load();
    return RomWriter("import", options, *target, console).bringTo(before, wanted, true);
}

} // namespace

Verb addRomImport(CLI::App& rom) {
    auto options = std::make_shared<ImportOptions>();
    CLI::App* command = rom.add_subcommand(
        "import", "Makes a JSON document the whole content: sections that are not in it are erased");
    command->add_option("JSON", options->file, "The document, as 'export' prints it")->required();
    addWriteOptions(*command, *options);
    addRebuildOption(*command, *options);
    return {command, [options](Console& console) { return runImport(*options, console); }};
}

} // namespace Zentara::Tool
