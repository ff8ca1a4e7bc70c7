#include <memory>

#include <CLI/CLI.hpp>

#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"

namespace Zentara::Tool {
namespace {

struct SetOptions : WriteOptions {
    std::uint16_t uid = 0;
    std::string jsonFile;
    std::string rawFile;
    std::string hex;
    std::string type;
    bool readOnly = false;
};

std::uint8_t typeOf(const std::string& text) {
    if (const auto type = sectionTypeFromName(text))
        return *type;
    int number = -1;
    if (!CLI::detail::lexical_cast(text, number) || number < 0 || number > 0xFF)
        throw Failure(Failure::Usage,
                      "--type '" + text + "' is no name of a section type and no number up to 255");
    return static_cast<std::uint8_t>(number);
}

Bytes rawBytes(const SetOptions& options) {
    if (!options.rawFile.empty()) {
        const std::string bytes = readFlashFile(options.rawFile);
        return {bytes.begin(), bytes.end()};
    }
    auto bytes = fromHex(options.hex);
    if (!bytes)
        throw Failure(Failure::Usage, "--hex takes pairs of hexadecimal digits, not '" + options.hex + "'");
    return *std::move(bytes);
}

/// The section of before gives what the options leave out.
FlashSection sectionFrom(const SetOptions& options, const FlashContent& content) {
    if (!options.jsonFile.empty())
        return sectionFromJson(readFlashFile(options.jsonFile), options.jsonFile, options.uid);
    FlashSection section;
    const auto old = content.find(options.uid);
    if (options.type.empty() && old == content.end())
        throw Failure(Failure::Usage, "a new section needs --type");
    section.type = options.type.empty() ? old->second.type : typeOf(options.type);
    if (old != content.end())
        section.flags = old->second.flags;
    else
        section.setWritable(true);
    if (options.readOnly)
        section.setWritable(false);
    section.data = rawBytes(options);
    return section;
}

ExitCode runSet(const SetOptions& options, Console& console) {
    Flash flash = openFlashToWrite(options, options.dryRun, console);
    const FlashImage before = loadFlash(flash, console);
    FlashContent wanted = contentOf(before);
    const FlashSection section = sectionFrom(options, wanted);
    wanted[options.uid] = section;
    return makeChange(flash, flash.plan(before, wanted, options.change), options, console);
}

} // namespace

Verb addRomSet(CLI::App& rom) {
    auto options = std::make_shared<SetOptions>();
    CLI::App* command = rom.add_subcommand("set", "Writes one section");
    command->add_option("UID", options->uid, "Which one")->required();
    addWriteOptions(*command, *options);
    addRebuildOption(*command, *options);
    addOtherCameraOption(*command, *options);
    CLI::Option_group* source = command->add_option_group("Content");
    source->add_option("--file", options->jsonFile, "Its JSON, as 'get' prints it");
    source->add_option("--raw", options->rawFile, "A file with its data");
    source->add_option("--hex", options->hex, "Its data as hexadecimal digits");
    source->require_option(1);
    command->add_option("--type", options->type, "Its type, a name or a number; that of before unless set");
    command->add_flag("--read-only", options->readOnly, "Nobody may change it afterwards");
    return {command, [options](Console& console) { return runSet(*options, console); }};
}

} // namespace Zentara::Tool
