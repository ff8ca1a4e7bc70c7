#include <zentara/host/flash_map.h>

#include <algorithm>
#include <set>

#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/rom/memory_block_header.h>
#include <zentara/rom/section.h>
#include <zentara/utils/format.h>

#include "host/float_text.h"
#include "host/pictures/canvas.h"

namespace Zentara::Host {
namespace {

using Utils::Format;

constexpr std::size_t COLUMNS = 64;
constexpr std::size_t MOST_ROWS = 64;
constexpr int CELL = 10;        ///< pixels of a piece in a picture
constexpr double ROW = 24;      ///< of a row in a drawing
constexpr double LEFT = 90;     ///< where a drawing's rows begin, right of the addresses
constexpr double WIDTH = 1024;  ///< of a whole row
constexpr double CAPTION = 110; ///< the least width of a stretch that is written on

constexpr const char* letters = "123456789abcdefghijklmnopqrstuvwxyz";

Color colorOf(RegionKind kind, char letter) {
    constexpr Color sections[] = {{76, 114, 176},  {85, 168, 104}, {129, 114, 178}, {204, 185, 116},
                                  {100, 181, 205}, {221, 132, 82}, {140, 140, 140}};
    switch (kind) {
    case RegionKind::Free:
        return {240, 240, 240};
    case RegionKind::Slack:
        return {214, 214, 214};
    case RegionKind::Remains:
        return {232, 200, 160};
    case RegionKind::Header:
        return {30, 30, 30};
    case RegionKind::Container:
        return {90, 90, 90};
    case RegionKind::Damaged:
        return {214, 39, 40};
    case RegionKind::Section:
        break;
    }
    return sections[static_cast<unsigned char>(letter) % std::size(sections)];
}

std::string colorText(Color color) {
    return Format("#%{:x2}%{:x2}%{:x2}") % unsigned{color.red} % unsigned{color.green} % unsigned{color.blue};
}

struct Meaning {
    RegionKind kind;
    const char* text;
};
constexpr Meaning meanings[] = {
    {RegionKind::Free, "free"},           {RegionKind::Slack, "rest of a chunk"},
    {RegionKind::Remains, "unlinked"},    {RegionKind::Header, "management header"},
    {RegionKind::Container, "container"}, {RegionKind::Section, "section"},
    {RegionKind::Damaged, "damaged"}};

std::string xmlText(const std::string& text) {
    std::string safe;
    for (const char letter : text)
        safe += letter == '<' ? "&lt;" : letter == '&' ? "&amp;" : std::string(1, letter);
    return safe;
}

char characterOf(const FlashRegion* region) {
    if (!region)
        return '.';
    constexpr char signs[] = {'.', '-', '~', 'H', 'C', '?', '!'};
    return region->kind == RegionKind::Section ? region->letter : signs[static_cast<int>(region->kind)];
}

} // namespace

const char* regionKindName(RegionKind kind) noexcept {
    constexpr const char* names[] = {"free", "slack", "remains", "header", "container", "section", "damaged"};
    return names[static_cast<std::size_t>(kind)];
}

FlashMap::FlashMap(const FlashSurvey& survey) : area(survey.area) {
    if (area.size >= ROM::ChunkedMemoryManagementHeader::SIZE)
        add(survey.header ? RegionKind::Header : RegionKind::Damaged, area.headerAddress(),
            ROM::ChunkedMemoryManagementHeader::SIZE,
            survey.header ? "management header" : "no management header that can be read", 'H');
    std::set<std::uint64_t> places;
    for (const SurveyedBlock& block : survey.blocks)
        places.insert(block.address);
    std::size_t number = 0;
    for (const SurveyedBlock& block : survey.blocks) {
        if (block.isOutside) {
            add(RegionKind::Damaged, block.address, ROM::MemoryBlockHeader::SIZE,
                "a block that reaches past the end of the area", '!');
            continue;
        }
        // At most to where another block begins, or the area ends.
        const auto above = places.upper_bound(block.address);
        const std::uint64_t end = std::uint64_t{block.address} + block.allocatedSize;
        const std::uint64_t rest =
            std::min(block.address + block.chunkBytes, above == places.end() ? area.end() : *above);
        if (end < rest)
            add(RegionKind::Slack, end, rest - end, "rest of a chunk", '-');
        if (block.isContainerHeader)
            add(RegionKind::Container, block.address, block.allocatedSize, "container header", 'C');
        else if (block.section)
            add(RegionKind::Section, block.address, block.allocatedSize,
                sectionText(block.section->uid, block.section->content), letters[number++ % 35]);
        else
            add(RegionKind::Damaged, block.address, block.allocatedSize, "a block without a readable section",
                '!');
    }
    for (const SurveyedSection& section : survey.unreachable)
        add(RegionKind::Remains, section.address, section.content.data.size() + ROM::Section::MIN_SIZE,
            "unlinked " + sectionText(section.uid, section.content), '~');
    for (const Finding& finding : survey.findings)
        if (finding.isFault && finding.kind == FindingKind::BlockHeader)
            add(RegionKind::Damaged, finding.address, ROM::MemoryBlockHeader::SIZE, finding.text, '!');
    std::stable_sort(all.begin(), all.end(), [](const FlashRegion& left, const FlashRegion& right) {
        return left.address < right.address;
    });
}

void FlashMap::add(RegionKind kind, std::uint64_t address, std::uint64_t length, std::string label,
                   char letter) {
    const std::uint64_t end = std::min(address + length, area.end());
    if (address >= area.start && address < end)
        all.push_back({kind, static_cast<std::uint32_t>(address), static_cast<std::uint32_t>(end - address),
                       std::move(label), letter});
}

std::vector<const FlashRegion*> FlashMap::cells(std::size_t count) const {
    std::vector<const FlashRegion*> shown(count, nullptr);
    for (const FlashRegion& region : all) {
        const std::uint64_t from = region.address - area.start;
        const std::size_t first = from * count / area.size;
        const std::size_t last = (from + region.length - 1) * count / area.size;
        // A piece that several regions share shows the one whose kind is named last.
        for (std::size_t i = first; i <= last; ++i)
            if (!shown[i] || shown[i]->kind < region.kind)
                shown[i] = &region;
    }
    return shown;
}

std::string FlashMap::text() const {
    const std::size_t rows = std::clamp<std::size_t>(area.size / (COLUMNS * 16), 1, MOST_ROWS);
    const std::vector<const FlashRegion*> shown = cells(rows * COLUMNS);
    std::string text =
        Format("each character % bytes\n") % static_cast<unsigned long long>(area.size / (rows * COLUMNS));
    std::string last;
    std::size_t equal = 0; // rows that look like the last one
    // An empty row at the end, which ends the equal ones before it.
    for (std::size_t row = 0; row <= rows; ++row) {
        std::string line;
        for (std::size_t column = 0; row < rows && column < COLUMNS; ++column)
            line += characterOf(shown[row * COLUMNS + column]);
        if (line == last) {
            ++equal;
            continue;
        }
        if (equal > 0)
            text += Format("            % more such %\n") % static_cast<unsigned long long>(equal) %
                    (equal == 1 ? "row" : "rows");
        equal = 0;
        last = line;
        if (row < rows)
            text += Format("0x%{:x8}  %\n") %
                    static_cast<std::uint32_t>(area.start + std::uint64_t{area.size} * row / rows) % line;
    }
    text += "\n.  free    -  rest of a chunk\n";
    for (const FlashRegion& region : all)
        if (region.kind != RegionKind::Slack)
            text += Format("%  0x%{:x8}  %\n") % std::string(1, characterOf(&region)) % region.address %
                    region.label;
    return text;
}

std::string FlashMap::svg(const std::string& title) const {
    const std::uint64_t rows = std::clamp<std::uint64_t>(area.size / 2048, 1, MOST_ROWS);
    const std::uint64_t rowBytes = (area.size + rows - 1) / rows;
    std::string svg = Format("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%\" height=\"%\" "
                             "font-family=\"sans-serif\" font-size=\"11\">\n"
                             "<rect width=\"100%%\" height=\"100%%\" fill=\"#ffffff\"/>\n") %
                      (LEFT + WIDTH + 10) % (ROW * static_cast<double>(rows + 3) + 10);
    svg += Format("<text x=\"8\" y=\"18\" font-size=\"14\">%</text>\n<g transform=\"translate(0 %)\">\n") %
           xmlText(title) % decimalText(ROW);
    const auto x = [&](std::uint64_t offset) {
        return LEFT + WIDTH * static_cast<double>(offset) / static_cast<double>(rowBytes);
    };
    const auto draw = [&](std::uint64_t from, std::uint64_t end, Color color, const std::string& label) {
        for (std::uint64_t at = from; at < end;) { // a stretch goes on in the next row
            const std::uint64_t row = at / rowBytes;
            const std::uint64_t stop = std::min(end, (row + 1) * rowBytes);
            const double left = x(at - row * rowBytes);
            const double width = x(stop - row * rowBytes) - left;
            const double top = 5 + ROW * static_cast<double>(row);
            svg +=
                Format(
                    "<rect x=\"%\" y=\"%\" width=\"%\" height=\"%\" fill=\"%\"><title>%</title></rect>\n") %
                decimalText(left) % decimalText(top) % decimalText(width) % decimalText(ROW - 4) %
                colorText(color) % label;
            if (width >= CAPTION)
                svg += Format("<text x=\"%\" y=\"%\" fill=\"%\">%</text>\n") % decimalText(left + 4) %
                       decimalText(top + 14) %
                       (color.red + color.green + color.blue > 500 ? "#606060" : "#ffffff") %
                       label.substr(0, static_cast<std::size_t>(width / 6.5)); // about as wide as a letter
            at = stop;
        }
    };
    for (std::uint64_t row = 0; row < rows; ++row)
        svg += Format("<text x=\"8\" y=\"%\">0x%{:x8}</text>\n") %
               decimalText(5 + ROW * static_cast<double>(row) + 14) %
               static_cast<std::uint32_t>(area.start + row * rowBytes);
    std::uint64_t end = 0;
    for (const FlashRegion& region : all) {
        const std::uint64_t begin = region.address - area.start;
        if (begin > end)
            draw(end, begin, colorOf(RegionKind::Free, '.'), "free");
        end = std::max(end, begin + region.length);
    }
    draw(end, area.size, colorOf(RegionKind::Free, '.'), "free");
    // One kind after the other, so that what is named later lies above.
    for (RegionKind kind = RegionKind::Slack; kind <= RegionKind::Damaged;
         kind = static_cast<RegionKind>(static_cast<int>(kind) + 1))
        for (const FlashRegion& region : all)
            if (region.kind == kind)
                draw(region.address - area.start, std::uint64_t{region.address} - area.start + region.length,
                     colorOf(kind, region.letter), region.label);
    double left = LEFT;
    const double top = 5 + ROW * static_cast<double>(rows) + 8;
    svg += Format("<text x=\"8\" y=\"%\">each row % bytes</text>\n") % decimalText(top + ROW + 11) %
           static_cast<unsigned long long>(rowBytes);
    for (const Meaning& meaning : meanings) {
        svg += Format("<rect x=\"%\" y=\"%\" width=\"14\" height=\"14\" fill=\"%\"/>\n"
                      "<text x=\"%\" y=\"%\">%</text>\n") %
               decimalText(left) % decimalText(top) % colorText(colorOf(meaning.kind, '1')) %
               decimalText(left + 20) % decimalText(top + 11) % meaning.text;
        left += 140;
    }
    return svg + "</g>\n</svg>\n";
}

Picture FlashMap::picture(const std::string& title) const {
    const std::size_t rows = std::clamp<std::size_t>(area.size / (COLUMNS * 16), 1, MOST_ROWS);
    const std::vector<const FlashRegion*> shown = cells(rows * COLUMNS);
    constexpr int line = Canvas::textHeight + 6;
    constexpr int margin = 12;
    const int left = margin + Canvas::textWidth("0x00000000") + margin;
    const int top = 2 * line;
    std::vector<std::pair<Color, std::string>> legend;
    for (const Meaning& meaning : meanings)
        if (meaning.kind != RegionKind::Section)
            legend.emplace_back(colorOf(meaning.kind, '.'), meaning.text);
    for (const FlashRegion& region : all)
        if (region.kind == RegionKind::Section && legend.size() < MOST_ROWS)
            legend.emplace_back(colorOf(region.kind, region.letter), region.label);
    const int below = top + static_cast<int>(rows) * CELL + margin;
    Canvas canvas(std::max(left + static_cast<int>(COLUMNS) * CELL, Canvas::textWidth(title) + margin) +
                      margin,
                  below + (static_cast<int>(legend.size()) + 1) * line);
    canvas.text(margin, margin, title, black);
    for (std::size_t row = 0; row < rows; ++row) {
        const int y = top + static_cast<int>(row) * CELL;
        if (row % 2 == 0)
            canvas.text(margin, y,
                        Format("0x%{:x8}") %
                            static_cast<std::uint32_t>(area.start + std::uint64_t{area.size} * row / rows),
                        black);
        for (std::size_t column = 0; column < COLUMNS; ++column) { // a line between the pieces
            const FlashRegion* region = shown[row * COLUMNS + column];
            canvas.box(left + static_cast<int>(column) * CELL, y, CELL - 1, CELL - 1,
                       region ? colorOf(region->kind, region->letter) : colorOf(RegionKind::Free, '.'));
        }
    }
    canvas.text(margin, below,
                Format("each square % bytes") % static_cast<unsigned long long>(area.size / (rows * COLUMNS)),
                black);
    for (std::size_t entry = 0; entry < legend.size(); ++entry) {
        const int y = below + (static_cast<int>(entry) + 1) * line;
        canvas.box(margin, y, Canvas::textHeight, Canvas::textHeight - 4, legend[entry].first);
        canvas.text(margin + 2 * Canvas::textHeight, y, legend[entry].second, black);
    }
    return canvas.picture();
}

} // namespace Zentara::Host
