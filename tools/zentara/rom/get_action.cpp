#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/rom/rom_target.h"
#include "tools/zentara/rom/rom_verbs.h"

namespace Zentara::Tool {
namespace {

struct GetOptions : TargetOptions {
    bool force = false;
    std::uint16_t uid = 0;
    std::string rawFile;
    bool hex = false;
};

ExitCode runGet(const GetOptions& options, Console& console) {
    Flash flash = openFlash(options, console);
    const FlashContent content = loadContent(flash, console);
    const auto found = content.find(options.uid);
    if (found == content.end())
        throw Failure(Failure::Failed,
                      Utils::Format("%: Section % is not defined") % flash.name() % options.uid);
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

} // namespace Zentara::Tool
