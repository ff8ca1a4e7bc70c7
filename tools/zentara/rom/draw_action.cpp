#include <algorithm>
#include <cmath>
#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/host/color_map.h>
#include <zentara/utils/format.h>

#include "host/flash/correction_tables.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"
#include "tools/zentara/rom/text_lines.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

struct DrawOptions : TargetOptions {
    bool force = false;
    std::string file;
    unsigned table = 0;
    unsigned width = 0;
    unsigned scale = 0;
};

const CorrectionTable& tableOf(const std::vector<CorrectionFile>& corrections, unsigned wanted) {
    std::size_t count = 0;
    for (const CorrectionFile& correction : corrections)
        for (const CorrectionTable& table : correction.tables)
            if (count++ == wanted && !table.values.empty())
                return table;
    throw Failure(Failure::Failed, Format("there is no table % with values; there are % tables") % wanted %
                                       static_cast<unsigned long long>(count));
}

/// The format does not say how wide a table is: 4 to 3 if the number of values allows it, as the cameras'
/// pictures are.
std::size_t widthOf(const CorrectionTable& table, unsigned wanted) {
    const std::size_t count = table.values.size();
    if (wanted > 0)
        return std::min<std::size_t>(wanted, count);
    const auto fourths = static_cast<std::size_t>(std::lround(std::sqrt(static_cast<double>(count) / 12)));
    if (12 * fourths * fourths == count)
        return 4 * fourths;
    return static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count))));
}

/// Each value a square; black for what the last row lacks.
Picture pictureOf(const CorrectionTable& table, const ColorMap& colors, std::size_t width, std::size_t height,
                  std::size_t scale) {
    constexpr Color noValue{0, 0, 0};
    Picture picture(static_cast<std::uint32_t>(width * scale), static_cast<std::uint32_t>(height * scale),
                    noValue);
    for (std::uint32_t y = 0; y < picture.height(); ++y)
        for (std::uint32_t x = 0; x < picture.width(); ++x) {
            const std::size_t index = y / scale * width + x / scale;
            if (index < table.values.size())
                picture.set(x, y, colors(table.values[index]));
        }
    return picture;
}

ExitCode runDraw(const DrawOptions& options, Console& console) {
    const auto target = RomTarget::open(options, console);
    const std::vector<CorrectionFile> corrections = correctionsOf(loadContent(target->load(), *target));
    const CorrectionTable& table = tableOf(corrections, options.table);
    const std::size_t width = widthOf(table, options.width);
    const std::size_t height = (table.values.size() + width - 1) / width;
    constexpr std::size_t comfortable = 320;
    const std::size_t scale =
        options.scale > 0 ? options.scale : std::max<std::size_t>(1, comfortable / std::max(width, height));
    constexpr std::size_t mostPixels = 64U << 20;
    if (width * height > mostPixels / (scale * scale))
        throw Failure(Failure::Usage, "the picture would be larger than 64 million pixels");
    const auto statistics = table.statistics();
    const ColorMap colors({static_cast<double>(statistics.least), static_cast<double>(statistics.greatest)},
                          "8-bit value", table.values.size() < width * height ? "no value" : "");
    saveFile(*target, options.file,
             colors
                 .explain(pictureOf(table, colors, width, height, scale),
                          Format("Distortion correction at % MHz, table % of %") % table.frequency %
                              options.table % target->name())
                 .png(),
             options.force);
    if (options.json) {
        Json json = target->beginJson();
        json.update({{"file", options.file},
                     {"table", options.table},
                     {"modulationFrequency", table.frequency},
                     {"width", width},
                     {"height", height},
                     {"least", statistics.least},
                     {"greatest", statistics.greatest}});
        print(console.out, json);
        return Failure::None;
    }
    printLine(console.out, Format("table % (% MHz), % by % values: %") % options.table % table.frequency %
                               static_cast<unsigned long long>(width) %
                               static_cast<unsigned long long>(height) % options.file);
    return Failure::None;
}

} // namespace

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
