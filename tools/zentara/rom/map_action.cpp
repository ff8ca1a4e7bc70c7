#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "host/flash/flash_map.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"

namespace Zentara::Tool {
namespace {

struct MapOptions : TargetOptions {
    bool force = false;
    std::string svgFile;
    std::string pngFile;
};

Json regionsJson(const FlashMap& map) {
    constexpr const char* kinds[] = {"free", "slack", "remains", "header", "container", "section", "damaged"};
    Json json = Json::array();
    for (const Region& region : map.regions())
        json.push_back({{"address", region.address},
                        {"length", region.length},
                        {"kind", kinds[static_cast<int>(region.kind)]},
                        {"label", region.label}});
    return json;
}

ExitCode runMap(const MapOptions& options, Console& console) {
    const auto target = RomTarget::open(options, console);
    const FlashImage image = target->load();
    const FlashMap map(image, FlashSurvey(image));
    const std::string title = Utils::Format("Flash of %: % bytes at 0x%{:x8}") % target->name() %
                              image.area().size % image.area().start;
    if (!options.svgFile.empty())
        saveFile(*target, options.svgFile, map.svg(title), options.force);
    if (!options.pngFile.empty())
        saveFile(*target, options.pngFile, map.png(title), options.force);
    if (options.json) {
        Json json = target->beginJson();
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
