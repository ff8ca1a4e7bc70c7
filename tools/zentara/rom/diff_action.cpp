#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/rom/rehearsal.h"
#include "tools/zentara/rom/rom_json.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"
#include "tools/zentara/rom/text_lines.h"

namespace Zentara::Tool {
namespace {

struct DiffOptions : TargetOptions {
    std::string other;
};

constexpr const char* kindNames[] = {"added", "replaced", "erased"};

/// Each value that is not the same in both, with its path: "records/0/fx: 1.5 -> 2".
std::vector<std::string> valueChanges(const RomContent& before, const RomContent& after, std::uint16_t uid) {
    const Json old = sectionToJson(uid, before.at(uid));
    const Json fresh = sectionToJson(uid, after.at(uid));
    std::vector<std::string> lines;
    const Json oldFlat = old.flatten();
    const Json freshFlat = fresh.flatten();
    const auto valueOf = [](const Json& flat, const std::string& key) {
        return flat.contains(key) ? flat[key].dump(-1, ' ', false, Json::error_handler_t::replace)
                                  : "nothing";
    };
    const auto compare = [&](const std::string& key) {
        const std::string left = valueOf(oldFlat, key);
        const std::string right = valueOf(freshFlat, key);
        constexpr std::size_t shown = 60;
        if (left != right)
            lines.push_back(key.substr(1) + ": " + left.substr(0, shown) + " -> " + right.substr(0, shown));
    };
    for (const auto& [key, unused] : oldFlat.items())
        compare(key);
    for (const auto& [key, unused] : freshFlat.items())
        if (!oldFlat.contains(key))
            compare(key);
    return lines;
}

RomContent contentOf(TargetOptions options, const std::string& image, Console& console) {
    options.image = image;
    const auto target = RomTarget::open(options, console);
    return loadContent(target->load(), *target);
}

ExitCode runDiff(const DiffOptions& options, Console& console) {
    const RomContent before = contentOf(options, options.image, console);
    const RomContent after = contentOf(options, options.other, console);
    Json changes = Json::array();
    for (const ContentChange& change : changesBetween(before, after)) {
        const bool inBoth = change.kind == ContentChange::Kind::Replaced;
        const std::vector<std::string> values =
            inBoth ? valueChanges(before, after, change.uid) : std::vector<std::string>();
        changes.push_back({{"uid", change.uid},
                           {"kind", kindNames[static_cast<int>(change.kind)]},
                           {"text", change.text},
                           {"values", values}});
        if (options.json)
            continue;
        printLine(console.out, change.text);
        for (const std::string& value : values)
            printLine(console.out, "  " + value);
    }
    if (options.json) {
        Json json = beginJson("rom");
        json.update({{"action", "diff"}, {"equal", changes.empty()}, {"changes", changes}});
        print(console.out, json);
    }
    return changes.empty() ? ExitCode_DONE : ExitCode_FAILED;
}

} // namespace

Verb addRomDiff(CLI::App& rom) {
    auto options = std::make_shared<DiffOptions>();
    CLI::App* command = rom.add_subcommand(
        "diff", "Says what B holds other than A, value by value; exit code 1 when anything");
    addTargetOptions(*command, *options);
    command->get_option("IMAGE")->required();
    command->add_option("OTHER", options->other, "B: a file, or camera:CHIP")->required();
    return {command, [options](Console& console) { return runDiff(*options, console); }};
}

} // namespace Zentara::Tool
