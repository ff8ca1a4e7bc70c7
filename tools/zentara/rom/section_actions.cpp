#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

struct GetOptions : TargetOptions {
    bool force = false;
    std::uint16_t uid = 0;
    std::string rawFile;
    bool hex = false;
};

/// JSON unless told otherwise: what 'get' prints, 'set --file' takes.
ExitCode runGet(const GetOptions& options, Console& console) {
    Flash flash = openFlash(options, console);
    const FlashContent content = loadContent(flash, console);
    const auto found = content.find(options.uid);
    if (found == content.end())
        throw Failure(Failure::Failed, Format("%: Section % is not defined") % flash.name() % options.uid);
    const Bytes& data = found->second.data;
    const std::string section = toJson(options.uid, found->second);
    if (!options.rawFile.empty())
        flash.save(options.rawFile, std::string(data.begin(), data.end()), forced(options.force));
    if (options.json) {
        Json json = beginJson(flash, console);
        json["section"] = Json::parse(section);
        if (options.hex)
            json["hex"] = toHex(data);
        if (!options.rawFile.empty())
            json["file"] = options.rawFile;
        print(console.out, json);
    } else if (options.rawFile.empty()) {
        console.out << (options.hex ? toHex(data) + "\n" : section);
    }
    return Failure::None;
}

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
    // what can be read: where the change would cost the rest, the plan refuses it, or rebuilds
    FlashContent wanted = contentOf(before);
    const FlashSection section = sectionFrom(options, wanted);
    wanted[options.uid] = section;
    return makeChange(flash, flash.plan(before, wanted, options.change), options, console);
}

struct EraseOptions : WriteOptions {
    std::uint16_t uid = 0;
};

ExitCode runErase(const EraseOptions& options, Console& console) {
    Flash flash = openFlashToWrite(options, options.dryRun, console);
    const FlashImage before = loadFlash(flash, console);
    FlashContent wanted = contentOfFlash(flash, before);
    if (wanted.erase(options.uid) == 0)
        throw Failure(Failure::Failed, Format("%: Cannot erase section - % is not a valid section uid") %
                                           flash.name() % options.uid);
    return makeChange(flash, flash.plan(before, wanted, options.change), options, console);
}

} // namespace

Verb addRomGet(CLI::App& rom) {
    auto options = std::make_shared<GetOptions>();
    CLI::App* command =
        rom.add_subcommand("get", "Prints one section as JSON, in the form that 'set --file' takes");
    command->add_option("UID", options->uid, "Which one")->required();
    addTargetOptions(*command, *options);
    auto* raw = command->add_option("--raw", options->rawFile, "Put the section's data into a file instead");
    command->add_flag("--hex", options->hex, "Print the data as hexadecimal digits instead")->excludes(raw);
    addForceOption(*command, options->force);
    return {command, [options](Console& console) { return runGet(*options, console); }};
}

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

Verb addRomErase(CLI::App& rom) {
    auto options = std::make_shared<EraseOptions>();
    CLI::App* command = rom.add_subcommand("erase", "Erases one section");
    command->add_option("UID", options->uid, "Which one")->required();
    addWriteOptions(*command, *options);
    addRebuildOption(*command, *options);
    return {command, [options](Console& console) { return runErase(*options, console); }};
}

} // namespace Zentara::Tool
