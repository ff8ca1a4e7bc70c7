#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "host/flash/content_json.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"

namespace Zentara::Tool {
namespace {

struct GetOptions : TargetOptions {
    bool force = false;
    std::uint16_t uid = 0;
    std::string rawFile;
    bool hex = false;
};

ExitCode runGet(const GetOptions& options, Console& console) {
    const auto target = RomTarget::open(options, console);
    const FlashContent content = loadContent(target->load(), *target);
    const auto found = content.find(options.uid);
    if (found == content.end())
        throw Failure(Failure::Failed,
                      Utils::Format("%: Section % is not defined") % target->name() % options.uid);
    const Bytes& data = found->second.data;
    Json section = sectionToJson(options.uid, found->second);
    if (!options.rawFile.empty())
        saveFile(*target, options.rawFile, std::string(data.begin(), data.end()), options.force);
    if (options.json) {
        Json json = target->beginJson();
        json["section"] = section;
        if (options.hex)
            json["hex"] = toHex(data);
        if (!options.rawFile.empty())
            json["file"] = options.rawFile;
        print(console.out, json);
    } else if (!options.rawFile.empty()) {
        return Failure::None;
    } else if (options.hex) {
        console.out << toHex(data) << '\n';
    } else {
        print(console.out, section);
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
