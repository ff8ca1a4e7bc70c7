#include <iomanip>
#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/rom/section.h>

#include "host/flash/correction_tables.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"
#include "tools/zentara/text_columns.h"

namespace Zentara::Tool {
namespace {

bool isWritable(const FlashSection& section) { return (section.flags & ROM::Section::FLAG_WRITABLE) != 0; }

void printSection(std::uint16_t uid, const FlashSection& section, std::ostream& out) {
    out << std::right << std::setw(5) << uid << "  " << padded(sectionTypeText(section.type), 30)
        << padded(isWritable(section) ? "writable" : "read-only", 11) << section.data.size() << '\n';
}

ExitCode runList(const TargetOptions& options, Console& console) {
    const auto target = RomTarget::open(options, console);
    const FlashContent content = loadContent(target->load(), *target);
    const std::vector<CorrectionFile> corrections = correctionsOf(content);
    if (!options.json) {
        for (const auto& [uid, section] : content)
            printSection(uid, section, console.out);
        for (const CorrectionFile& correction : corrections)
            console.out << correctionText(correction);
        return Failure::None;
    }
    Json json = target->beginJson();
    json.update({{"sections", Json::array()}});
    for (const auto& [uid, section] : content)
        json["sections"].push_back({{"uid", uid},
                                    {"type", section.type},
                                    {"typeName", sectionTypeText(section.type)},
                                    {"writable", isWritable(section)},
                                    {"size", section.data.size()}});
    if (!corrections.empty())
        json["corrections"] = correctionsJson(corrections);
    print(console.out, json);
    return Failure::None;
}

} // namespace

Verb addRomList(CLI::App& rom) {
    auto options = std::make_shared<TargetOptions>();
    CLI::App* command = rom.add_subcommand(
        "list", "The sections: uid, type, access, bytes; and the tables of a correction file");
    addTargetOptions(*command, *options);
    return {command, [options](Console& console) { return runList(*options, console); }};
}

} // namespace Zentara::Tool
