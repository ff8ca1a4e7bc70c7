#include <algorithm>
#include <cmath>
#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "host/flash/correction_tables.h"
#include "host/pictures/canvas.h"
#include "host/pictures/color_map.h"
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

/// The colours of the depths: red for the least value, blue for the greatest, black for what is not there.
std::vector<std::uint8_t> pixelsOf(const CorrectionTable& table, std::size_t width, std::size_t height,
                                   std::size_t scale) {
    const auto statistics = table.statistics();
    const DepthRange range{static_cast<std::uint16_t>(statistics.least + 1),
                           static_cast<std::uint16_t>(statistics.greatest + 1)};
    std::vector<std::uint8_t> pixels;
    pixels.reserve(width * height * scale * scale * 3);
    for (std::size_t y = 0; y < height * scale; ++y)
        for (std::size_t x = 0; x < width * scale; ++x) {
            const std::size_t index = y / scale * width + x / scale;
            const bool isThere = index < table.values.size();
            const Rgb color =
                depthColor(isThere ? static_cast<std::uint16_t>(table.values[index] + 1) : 0, range);
            pixels.insert(pixels.end(), color.begin(), color.end());
        }
    return pixels;
}

ColorScale scaleOf(const CorrectionTable& table) {
    const auto statistics = table.statistics();
    const DepthRange range{static_cast<std::uint16_t>(statistics.least + 1),
                           static_cast<std::uint16_t>(statistics.greatest + 1)};
    return {static_cast<double>(statistics.least), static_cast<double>(statistics.greatest), "8-bit value",
            [range](double value) {
                return depthColor(static_cast<std::uint16_t>(std::lround(value) + 1), range);
            },
            "no value"};
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
    saveFile(*target, options.file,
             scaledPicturePng(Format("Distortion correction at % MHz, table % of %") % table.frequency %
                                  options.table % target->name(),
                              pixelsOf(table, width, height, scale), static_cast<int>(width * scale),
                              static_cast<int>(height * scale), scaleOf(table)),
             options.force);
    if (options.json) {
        Json json = target->beginJson();
        json.update({{"file", options.file},
                     {"table", options.table},
                     {"modulationFrequency", table.frequency},
                     {"width", width},
                     {"height", height},
                     {"least", table.statistics().least},
                     {"greatest", table.statistics().greatest}});
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
