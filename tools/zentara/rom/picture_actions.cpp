#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/rom/rom_target.h"
#include "tools/zentara/rom/rom_verbs.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

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
    const std::string title =
        Format("Flash of %: % bytes at 0x%{:x8}") % flash.name() % flash.area().size % flash.area().start;
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

struct DrawOptions : TargetOptions {
    bool force = false;
    std::string file;
    unsigned table = 0;
    unsigned width = 0;
    unsigned scale = 0;
};

const CorrectionTable& tableOf(const std::vector<CorrectionSection>& corrections, unsigned wanted) {
    std::size_t count = 0;
    for (const CorrectionSection& correction : corrections)
        for (const CorrectionTable& table : correction.tables)
            if (count++ == wanted && !table.values.empty())
                return table;
    throw Failure(Failure::Failed, Format("there is no table % with values; there are % tables") % wanted %
                                       static_cast<unsigned long long>(count));
}

ExitCode runDraw(const DrawOptions& options, Console& console) {
    Flash flash = openFlash(options, console);
    const std::vector<CorrectionSection> corrections = correctionsOf(loadContent(flash, console));
    const CorrectionTable& table = tableOf(corrections, options.table);
    const CorrectionPicture drawn = pictureOf(table,
                                              Format("Distortion correction at % MHz, table % of %") %
                                                  table.megahertz % options.table % flash.name(),
                                              options.width, options.scale);
    flash.save(options.file, drawn.picture.png(), forced(options.force));
    const auto statistics = table.statistics();
    finish(flash, options, console,
           {{"file", options.file},
            {"table", options.table},
            {"modulationFrequency", table.megahertz},
            {"width", drawn.width},
            {"height", drawn.height},
            {"least", statistics.least},
            {"greatest", statistics.greatest}},
           {Format("table % (% MHz), % by % values: %") % options.table % table.megahertz %
            static_cast<unsigned long long>(drawn.width) % static_cast<unsigned long long>(drawn.height) %
            options.file});
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

Verb addRomDraw(CLI::App& rom) {
    auto options = std::make_shared<DrawOptions>();
    CLI::App* command =
        rom.add_subcommand("draw", "Draws a table of distortion correction as a PNG, in colours");
    addTargetOptions(*command, *options);
    command->add_option("--png", options->file, "The file")->required();
    command->add_option("--table", options->table, "Which table, from 0 on")->capture_default_str();
    command->add_option("--width", options->width, "Values in a row; guessed from their number unless set")
        ->check(CLI::Range(1U, 65536U));
    command->add_option("--scale", options->scale, "Pixels of a value's side")->check(CLI::Range(1U, 64U));
    addForceOption(*command, options->force);
    return {command, [options](Console& console) { return runDraw(*options, console); }};
}

} // namespace Zentara::Tool
