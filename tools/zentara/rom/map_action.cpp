#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/rom/rom_target.h"
#include "tools/zentara/rom/rom_verbs.h"

namespace Zentara::Tool {
namespace {

struct MapOptions : TargetOptions {
    bool force = false;
    std::string svgFile;
    std::string pngFile;
};

Json regionsJson(const FlashMap& map) {
    Json json = Json::array();
    for (const FlashRegion& region : map.regions())
        json.push_back({{"address", region.address},
                        {"length", region.length},
                        {"kind", regionKindName(region.kind)},
                        {"label", region.label}});
    return json;
}

ExitCode runMap(const MapOptions& options, Console& console) {
    Flash flash = openFlash(options, console);
    const FlashMap map(surveyOf(loadFlash(flash, console)));
    const std::string title = Utils::Format("Flash of %: % bytes at 0x%{:x8}") % flash.name() %
                              flash.area().size % flash.area().start;
    if (!options.svgFile.empty())
        flash.save(options.svgFile, map.svg(title), forced(options.force));
    if (!options.pngFile.empty())
        flash.save(options.pngFile, map.picture(title).png(), forced(options.force));
    if (options.json) {
        Json json = beginJson(flash, console);
        json.update({{"regions", regionsJson(map)}});
        print(console.out, json);
    } else if (options.svgFile.empty() && options.pngFile.empty()) {
        console.out << map.text();
    }
    return Failure::None;
}

} // namespace

Verb addRomMap(CLI::App& rom) {
    auto options = std::make_shared<MapOptions>();
    CLI::App* command = rom.add_subcommand("map", "Draws what lies where on the flash");
    addTargetOptions(*command, *options);
    command->add_option("--svg", options->svgFile, "As a drawing in this file");
    command->add_option("--png", options->pngFile, "As a picture in this file");
    addForceOption(*command, options->force);
    return {command, [options](Console& console) { return runMap(*options, console); }};
}

} // namespace Zentara::Tool
