#include <iomanip>
#include <memory>

#include <CLI/CLI.hpp>

#include "tools/zentara/rom/correction_text.h"
#include "tools/zentara/rom/rom_target.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/text_columns.h"

namespace Zentara::Tool {
namespace {

void printSection(std::uint16_t uid, const FlashSection& section, std::ostream& out) {
    out << std::right << std::setw(5) << uid << "  " << padded(sectionTypeText(section.type), 30)
        << padded(section.isWritable() ? "writable" : "read-only", 11) << section.data.size() << '\n';
}

ExitCode runList(const TargetOptions& options, Console& console) {
    Flash flash = openFlash(options, console);
    const FlashContent content = loadContent(flash, console);
    const std::vector<CorrectionSection> corrections = correctionsOf(content);
    if (!options.json) {
        for (const auto& [uid, section] : content)
            printSection(uid, section, console.out);
        for (const CorrectionSection& correction : corrections)
            console.out << correctionText(correction);
        return Failure::None;
    }
    Json json = beginJson(flash, console);
    json.update({{"sections", Json::array()}});
    for (const auto& [uid, section] : content)
        json["sections"].push_back({{"uid", uid},
                                    {"type", section.type},
                                    {"typeName", sectionTypeText(section.type)},
                                    {"writable", section.isWritable()},
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
