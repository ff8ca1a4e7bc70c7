#include "tools/zentara/rom/rom_write.h"

#include <algorithm>
#include <chrono>
#include <sstream>

#include <CLI/CLI.hpp>

#include <zentara/host/output_file.h>
#include <zentara/rom/section.h>
#include <zentara/utils/format.h>

#include "host/files/paths.h"
#include "host/flash/content_json.h"
#include "host/flash/flash_survey.h"
#include "tools/zentara/arguments.h"
#include "tools/zentara/json_output.h"
#include "tools/zentara/rom/text_lines.h"
#include "utils/platform/program.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr const char* refusedText = ": refused, nothing was written:";
constexpr const char* sidecarEnding = ".json"; ///< after a backup's name

/// "20261121-091500", in UTC.
std::string timeText() {
    using namespace std::chrono;
    const auto now = floor<seconds>(system_clock::now());
    const auto day = floor<days>(now);
    const year_month_day date(day);
    const hh_mm_ss time(now - day);
    return Format("%{:04}%{:02}%{:02}-%{:02}%{:02}%{:02}") % int{date.year()} % unsigned{date.month()} %
           unsigned{date.day()} % static_cast<int>(time.hours().count()) %
           static_cast<int>(time.minutes().count()) % static_cast<int>(time.seconds().count());
}

/// A name that nothing has yet; who comes first keeps it.
std::string freeName(const std::string& stem) {
    const std::string base = stem + "." + timeText();
    std::string name = base + ".bak";
    for (int i = 2; isThere(name); ++i)
        name = base + "-" + std::to_string(i) + ".bak";
    return name;
}

bool holdsStorage(const FlashImage& image) {
    FlashImage copy = image;
    Storage storage(copy, copy.area());
    storage.container.initialize();
    return storage.container.romInitialized();
}

/// What a rebuild gives up because no link leads to it, or because it cannot be read.
std::vector<std::string> givenUp(const FlashImage& before, const FlashContent& wanted) {
    std::vector<std::string> texts;
    const FlashSurvey survey(before);
    const bool isEmpty = survey.blocks().empty() && survey.unreachable().empty();
    for (const Finding& finding : survey.findings())
        if (!isEmpty && finding.isFault && isStructural(finding.kind) &&
            finding.kind != FindingKind::Unreachable)
            texts.push_back(Format("what cannot be read at 0x%{:x8} is given up: %") % finding.address %
                            finding.text);
    if (!survey.isCutOff())
        return texts;
    for (const SurveyedSection& section : survey.unreachable()) {
        const auto place = wanted.find(section.uid);
        if (place == wanted.end() || !(place->second == section.content))
            texts.push_back(sectionText(section.uid, section.content) +
                            ", which no link leads to, is given up; 'zentara rom salvage' finds it");
    }
    return texts;
}

void checkApart(const RomTarget& source, const std::string& path) {
    if (source.isAt(path))
        throw Failure(Failure::Usage, "'" + path + "' is the image itself: name another file");
}

} // namespace

void saveFile(const RomTarget& source, const std::string& path, const std::string& bytes, bool force) {
    checkApart(source, path);
    OutputFile file(path, forced(force));
    file.write(bytes);
    file.commit();
}

void keepFile(const RomTarget& source, const std::string& path, const Bytes& bytes) {
    checkApart(source, path);
    if (isThere(path) && !isDirectory(path)) {
        const std::string there = loadFile(path);
        if (std::equal(
                there.begin(), there.end(), bytes.begin(), bytes.end(),
                [](char left, std::uint8_t right) { return static_cast<std::uint8_t>(left) == right; }))
            return;
    }
    OutputFile file(path, {.ifThere = IfThere::Keep, .like = source.imageFile()});
    file.write(std::string(bytes.begin(), bytes.end()));
    file.commit();
}

void keepBackup(const RomTarget& source, const std::string& path, const FlashImage& image) {
    const std::optional<CameraIdentity> camera = source.camera();
    if (camera && !camera->serial.empty()) {
        Json json{{"schema", jsonSchema}, {"kind", "flash backup"}};
        json["camera"] = source.identity();
        json.update({{"sdk", sdkVersion}, {"start", image.area().start}, {"size", image.area().size}});
        std::ostringstream text;
        print(text, json);
        const std::string beside = text.str();
        keepFile(source, path + sidecarEnding, Bytes(beside.begin(), beside.end()));
    }
    keepFile(source, path, image.bytes());
}

std::string serialOfBackup(const std::string& path) {
    const std::string beside = path + sidecarEnding;
    if (!isThere(beside))
        return {};
    try {
        const Json json = parseJson(loadFile(beside));
        return JsonPlace(json).at("camera").at("serial").text();
    } catch (const JsonPlaceError& failure) {
        throw Failure(Failure::Failed, "'" + beside + "' does not say whose backup it is: " + failure.what());
    }
}

std::string loadFile(const std::string& path) { return readFileHere(path, true); }

/// The camera's own name, as its system info says it; empty when there is none.
std::string guidOf(const FlashContent& content) {
    for (const auto& [uid, section] : content) {
        if (section.type != static_cast<std::uint8_t>(ROM::ContainerSectionType::SystemInfo))
            continue;
        const Json document = sectionToJson(uid, section);
        for (const Json& record : document.at("records"))
            if (record.contains("guid"))
                return record["guid"].get<std::string>();
    }
    return {};
}

std::vector<std::string> foreignChanges(const FlashContent& before, const FlashContent& after) {
    std::vector<std::string> lines;
    for (const std::uint16_t uid : readOnlyConflicts(before, after))
        lines.push_back("the read-only " + sectionText(uid, before.at(uid)) +
                        (after.count(uid) != 0 ? " would be another" : " would go"));
    const std::string old = guidOf(before);
    const std::string fresh = guidOf(after);
    if (!old.empty() && !fresh.empty() && old != fresh)
        lines.push_back("the camera's GUID would change: " + old + " -> " + fresh);
    return lines;
}

std::vector<std::uint16_t> readOnlyConflicts(const FlashContent& before, const FlashContent& wanted) {
    std::vector<std::uint16_t> uids;
    for (const auto& [uid, section] : before) {
        const auto place = wanted.find(uid);
        const bool stays = place != wanted.end() && place->second == section;
        if (!stays && (section.flags & ROM::Section::FLAG_WRITABLE) == 0)
            uids.push_back(uid);
    }
    return uids;
}

FlashContent loadContentIfAny(const FlashImage& image) {
    FlashImage copy = image;
    Storage storage(copy, copy.area());
    storage.container.initialize();
    return contentOf(storage.container);
}

FlashContent loadContent(const FlashImage& image, const RomTarget& target) {
    FlashImage copy = image;
    Storage storage(copy, copy.area());
    storage.container.initialize();
    if (!storage.container.romInitialized())
        throw Failure(Failure::Verification,
                      target.name() + " holds no storage that can be read; 'zentara rom verify' tells why");
    return contentOf(storage.container);
}

void addWriteOptions(CLI::App& command, WriteOptions& options) {
    addTargetOptions(command, options);
    command.add_flag("--dry-run", options.dryRun,
                     "Try it on a copy and say what would change; write nothing");
    command.add_flag("--yes", options.yes, "Go on although something of before is gone afterwards");
    command.add_option("--backup", options.backup,
                       "Where the bytes of before go; a name with the time unless set");
}

void addOtherCameraOption(CLI::App& command, WriteOptions& options, const char* meaning) {
    command.add_flag("--other-camera", options.otherCamera, meaning);
}

void addForceOption(CLI::App& command, bool& force) {
    command.add_flag("--force", force, "Replace a file that is there already");
}

void addRebuildOption(CLI::App& command, WriteOptions& options) {
    command.add_flag("--rebuild", options.rebuild, "Write the whole content into a freshly formatted image");
}

ExitCode RomWriter::bringTo(const FlashImage& before, const FlashContent& wanted, bool formats) {
    const FlashContent old = loadContentIfAny(before);
    if (const auto conflicts = readOnlyConflicts(old, wanted); !conflicts.empty()) {
        std::vector<std::string> reasons;
        for (const std::uint16_t uid : conflicts)
            reasons.push_back(sectionText(uid, old.at(uid)) + " is read only");
        throw Failure(Failure::Permission, target.name() + refusedText, {}, {}, reasons);
    }
    const std::vector<std::string> foreign = foreignChanges(old, wanted);
    if (!foreign.empty() && !options.otherCamera)
        throw Failure(Failure::Usage, target.name() + refusedText, {},
                      "--other-camera writes it all the same", foreign);
    Rehearsal rehearsal = options.rebuild ? rebuild(before, wanted) : rehearse(before, wanted, formats);
    if (!rehearsal.isGood())
        refuse(before, wanted, rehearsal);
    PlannedWrite plan{foreign, options.rebuild, !foreign.empty(), std::move(rehearsal.writes),
                      std::move(rehearsal.image)};
    for (const ContentChange& change : changesBetween(old, wanted)) {
        for (std::string& line : change.lines())
            plan.changes.push_back(std::move(line));
        plan.takesAway |= change.kind != ContentChange::Kind::Added;
    }
    if (options.rebuild) {
        for (std::string& text : givenUp(before, wanted)) {
            plan.changes.push_back(std::move(text));
            plan.takesAway = true;
        }
        plan.changes.push_back(Format("the content is rebuilt in chunks of % bytes") %
                               plan.after.area().chunkSize);
    } else if (!holdsStorage(before))
        plan.changes.insert(plan.changes.begin(), "it is formatted where it was not");
    return write(before, plan);
}

void RomWriter::refuse(const FlashImage& before, const FlashContent& wanted, const Rehearsal& rehearsal) {
    if (rehearsal.refusal) {
        const auto& [type, message] = *rehearsal.refusal;
        const bool wouldFit =
            type == Plugin::PluginExceptionType_IO && !options.rebuild && rebuild(before, wanted).isGood();
        throw Failure(codeOf(type), target.name() + ": " + message + "; nothing was written", {},
                      wouldFit ? "the content fits into a freshly formatted image: --rebuild writes it there"
                               : "");
    }
    std::string remedy;
    if (!options.rebuild && rebuild(before, wanted).isGood())
        remedy =
            "--rebuild writes the content that can be read, with this change, into a freshly formatted image";
    if (FlashSurvey(before).isCutOff())
        remedy += std::string(remedy.empty() ? "" : "; ") +
                  "'zentara rom salvage' finds whole sections that no link leads to, and changes nothing";
    throw Failure(Failure::Verification, target.name() + refusedText, {}, remedy, rehearsal.losses);
}

/// Erased flash holds nothing to keep.
std::string RomWriter::backUp(const FlashImage& before) const {
    if (before.bytes() == FlashImage(before.area()).bytes())
        return {};
    const std::string path = options.backup.empty() ? freeName(target.backupStem()) : options.backup;
    keepBackup(target, path, before);
    return path;
}

/// Says where the bytes of before are, and in a line of its own the command that brings them back.
std::vector<std::string> RomWriter::wayBack(const FlashImage& before, const std::string& backupFile,
                                            bool isForeign) const {
    if (backupFile.empty())
        return {};
    const auto fileWord = [](const std::string& path) {
        return Utils::Platform::shellWord(path.front() == '-' ? "./" + path : path);
    };
    std::string command = "zentara rom restore " + fileWord(backupFile);
    if (const auto camera = target.camera()) {
        const std::string name = options.direct           ? options.camera
                                 : camera->serial.empty() ? camera->path
                                                          : camera->serial;
        command += (options.direct ? " --direct" : "") +
                   (name.empty() ? std::string() : " --camera " + Utils::Platform::shellWord(name));
        if (!options.controller.empty())
            command += " --controller " + options.controller;
        for (const std::string& plugin : options.plugins)
            command += " --plugin " + Utils::Platform::shellWord(plugin);
    } else {
        command += " " + fileWord(target.imageFile());
    }
    if (options.hasStart || options.size != 0)
        command += Format(" --start % --size %") % before.area().start % before.area().size;
    if (FlashSurvey(before).isFaulty())
        command += " --damaged";
    if (isForeign)
        command += " --other-camera";
    return {"the bytes of before are in '" + backupFile + "'; this puts them back:", command + " --yes"};
}

ExitCode RomWriter::write(const FlashImage& before, const PlannedWrite& plan) {
    if (plan.writes.empty() || options.dryRun) {
        report(plan, {});
        return Failure::None;
    }
    if (plan.takesAway && !options.yes)
        throw Failure(Failure::Usage,
                      "nothing was written to " + target.name() + " yet; what would become of it:", {},
                      "--yes does it, --dry-run only tries it", plan.changes);
    const std::string kept = backUp(before);
    const std::vector<std::string> back = wayBack(before, kept, plan.isForeign);
    // Told before the first byte goes out: nothing may be told any more when the power fails.
    if (target.isWrittenInPlace() && !back.empty()) {
        note(console, back.front());
        tellLine(console.err, "  " + back.back());
    }
    bool isStored = false;
    try {
        target.store(plan.writes);
        isStored = true;
        if (target.load("interrupted before all of it was read once more").bytes() != plan.after.bytes())
            throw Failure(Failure::Verification,
                          target.name() + " holds other bytes than were written to it");
    } catch (const Failure& failure) {
        const bool isTouched = isStored || target.isWrittenInPlace(); // else the file is as it was
        throw Failure(failure.code(), failure.message(), failure.cause(), failure.remedy(),
                      isTouched ? back : std::vector<std::string>());
    }
    report(plan, kept);
    return Failure::None;
}

void RomWriter::report(const PlannedWrite& plan, const std::string& backupFile) const {
    std::size_t bytes = 0;
    for (const FlashWrite& write : plan.writes)
        bytes += write.bytes.size();
    const bool isWritten = !options.dryRun && bytes > 0;
    if (options.json) {
        Json json = target.beginJson();
        json.update({{"changes", plan.changes},
                     {"writes", plan.writes.size()},
                     {"bytes", bytes},
                     {"written", isWritten}});
        if (!backupFile.empty())
            json["backup"] = backupFile;
        print(console.out, json);
        return;
    }
    for (const std::string& change : plan.changes)
        printLine(console.out, change);
    if (bytes == 0)
        printLine(console.out, "nothing changes");
    else if (!isWritten)
        printLine(console.out, Format("dry run: % bytes in % writes would go to %, nothing was written") %
                                   static_cast<unsigned long long>(bytes) %
                                   static_cast<unsigned long long>(plan.writes.size()) % target.name());
    else
        printLine(console.out,
                  Format("% bytes in % writes to %, read back and verified%") %
                      static_cast<unsigned long long>(bytes) %
                      static_cast<unsigned long long>(plan.writes.size()) % target.name() %
                      (backupFile.empty() ? "" : "; those of before are in '" + backupFile + "'"));
}

} // namespace Zentara::Tool
