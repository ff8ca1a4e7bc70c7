#include <iomanip>
#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/rom/rom_target.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/text_columns.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

void printHeader(const FlashSurvey& survey, std::ostream& out) {
    const FlashArea& area = survey.area;
    const SurveyedHeader& header = *survey.header;
    const FreeSpace& room = survey.freeSpace;
    printLine(out, Format("management header  0x%{:x8}, version %, readers from %, CRC 0x%{:x4}") %
                       area.headerAddress() % unsigned{header.version} % unsigned{header.minReadoutVersion} %
                       header.crc);
    printLine(
        out,
        Format("area               % bytes at 0x%{:x8}, chunks of %, header at the %, first block 0x%{:x8}") %
            header.availableSize % area.start % header.chunkSize % (area.headerAtStart ? "start" : "end") %
            header.firstBlock);
    printLine(out, Format("free               % bytes in % gaps, the largest % bytes, fragmentation % %%") %
                       static_cast<unsigned long long>(room.bytes) %
                       static_cast<unsigned long long>(room.gaps.size()) %
                       static_cast<unsigned long long>(room.largestGap) % room.fragmentationPercent());
}

void printSection(const SurveyedBlock& block, std::ostream& out) {
    const SurveyedSection& section = *block.section;
    out << std::right << std::setw(5) << section.uid << "  "
        << padded(sectionTypeText(section.content.type), 30)
        << padded(section.content.isWritable() ? "writable" : "read-only", 11) << std::setw(7)
        << section.content.data.size() << "  "
        << std::string(Format("0x%{:x8}  0x%{:x4}  0x%{:x4}") % block.address % section.headerCrc %
                       section.dataCrc)
        << '\n';
}

void printSurvey(const FlashSurvey& survey, std::ostream& out) {
    if (survey.header)
        printHeader(survey, out);
    else
        out << "management header  none that can be read\n";
    out << "\n  uid  type                          access       bytes  block       header  data\n";
    for (const SurveyedBlock& block : survey.blocks)
        if (block.section)
            printSection(block, out);
}

ExitCode runInfo(const TargetOptions& options, Console& console) {
    Flash flash = openFlash(options, console);
    const FlashSurvey survey = surveyOf(loadFlash(flash, console));
    const std::vector<CorrectionSection> corrections = correctionsOf(survey.linkedContent());
    if (options.json) {
        Json json = beginJson(flash, console);
        json.update(Json::parse(toJson(survey)));
        if (!corrections.empty())
            json["corrections"] = Json::parse(toJson(corrections));
        print(console.out, json);
    } else {
        printSurvey(survey, console.out);
        for (const CorrectionSection& correction : corrections)
            console.out << '\n' << correctionText(correction);
    }
    if (survey.isFaulty())
        note(console, "something is wrong with " + flash.name() + "; 'zentara rom verify' tells what");
    return survey.header ? Failure::None : Failure::Verification;
}

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
        json["corrections"] = Json::parse(toJson(corrections));
    print(console.out, json);
    return Failure::None;
}

} // namespace

Verb addRomInfo(CLI::App& rom) {
    auto options = std::make_shared<TargetOptions>();
    CLI::App* command =
        rom.add_subcommand("info", "Headers, free space, and each section with its place and checksums");
    addTargetOptions(*command, *options);
    return {command, [options](Console& console) { return runInfo(*options, console); }};
}

Verb addRomList(CLI::App& rom) {
    auto options = std::make_shared<TargetOptions>();
    CLI::App* command = rom.add_subcommand(
        "list", "The sections: uid, type, access, bytes; and the tables of a correction file");
    addTargetOptions(*command, *options);
    return {command, [options](Console& console) { return runList(*options, console); }};
}

} // namespace Zentara::Tool
