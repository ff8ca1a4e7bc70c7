#include <algorithm>
#include <set>
#include <utility>

#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/rom/container_section_type.h>
#include <zentara/utils/format.h>

#include "host/attempt.h"
#include "host/flash/backup.h"
#include "host/flash/content_json.h"
#include "host/flash/flash_target.h"
#include "host/flash/rehearsal.h"
#include "utils/visible_text.h"

namespace Zentara::Host {
namespace {

using Obstacle = FlashChange::Obstacle;
using Utils::Format;

constexpr const char* refusedText = ": refused, nothing was written:";

FlashChange nothingYet(const FlashImage& before) {
    return {before, before, {}, {}, {}, false, {}, Obstacle::None, {}, false, false};
}

FlashChange refused(FlashChange change, Obstacle why, Failure::Code code, const std::string& message,
                    std::vector<std::string> reasons = {}) {
    change.obstacle = why;
    change.refusal.emplace(code, message, "", "", std::move(reasons));
    return change;
}

void addSections(FlashChange& change, const FlashContent& before, const FlashContent& after) {
    change.sections = changesBetween(before, after);
    for (const SectionChange& section : change.sections) {
        for (std::string& line : section.lines())
            change.lines.push_back(std::move(line));
        change.takesAway |= section.kind != SectionChange::Kind::Added;
    }
}

/// The camera's own name, as its system info says it; empty when there is none.
std::string guidOf(const FlashContent& content) {
    for (const auto& [uid, section] : content) {
        if (section.type != static_cast<std::uint8_t>(ROM::ContainerSectionType::SystemInfo))
            continue;
        const Json document = sectionJson(uid, section);
        for (const Json& record : document.at("records"))
            if (record.contains("guid"))
                return record["guid"].get<std::string>();
    }
    return {};
}

/// What only another camera can have in its flash: read-only sections that are others, another GUID. One line each.
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

/// What a rebuild gives up because no link leads to it, or because it cannot be read.
std::vector<std::string> givenUp(const FlashImage& before, const FlashContent& wanted) {
    std::vector<std::string> texts;
    const FlashSurvey survey = surveyOf(before);
    const bool isEmpty = survey.blocks.empty() && survey.unreachable.empty();
    for (const Finding& finding : survey.findings)
        if (!isEmpty && finding.isFault && isStructural(finding.kind) &&
            finding.kind != FindingKind::Unreachable)
            texts.push_back(Format("what cannot be read at 0x%{:x8} is given up: %") % finding.address %
                            finding.text);
    if (!survey.isCutOff())
        return texts;
    for (const SurveyedSection& section : survey.unreachable) {
        const auto place = wanted.find(section.uid);
        if (place == wanted.end() || !(place->second == section.content))
            texts.push_back(sectionText(section.uid, section.content) +
                            ", which no link leads to, is given up; a salvage finds it");
    }
    return texts;
}

/// What a survey will call wrong once the change has been made, and did not before: a section whose data are no
/// records of its type, say. It can be written, so it is told, not refused.
std::vector<std::string> freshFaults(const FlashImage& before, const FlashImage& after) {
    std::set<std::string> known;
    for (const Finding& finding : surveyOf(before).findings)
        known.insert(finding.text);
    std::vector<std::string> lines;
    for (const Finding& finding : surveyOf(after).findings)
        if (finding.isFault && known.count(finding.text) == 0)
            lines.push_back("wrong afterwards: " + finding.text);
    return lines;
}

/// Of a rehearsal that did not come out as wanted.
FlashChange refusedBy(FlashChange change, const std::string& name, const FlashContent& wanted,
                      const Rehearsal& rehearsal, bool isRebuild) {
    if (rehearsal.refusal) {
        // In memory a write fails for want of room, or of a place in the area, and then all may fit if it is placed anew.
        const auto& [type, message] = *rehearsal.refusal;
        change.rebuildHelps =
            type == Plugin::PluginExceptionType_IO && !isRebuild && rebuild(change.before, wanted).isGood();
        return refused(std::move(change), Obstacle::Impossible, codeOf(type),
                       name + ": " + message + "; nothing was written");
    }
    change.rebuildHelps = !isRebuild && rebuild(change.before, wanted).isGood();
    change.salvageHelps = surveyOf(change.before).isCutOff();
    return refused(std::move(change), Obstacle::Costly, Failure::Verification, name + refusedText,
                   rehearsal.losses);
}

FlashImage imageFromFile(const std::string& file, const FlashArea& area) {
    const std::string bytes = readFlashFile(file);
    if (bytes.size() != area.size)
        throw Failure(Failure::Failed, Format("'%' has % bytes, the flash area has %") % file %
                                           static_cast<unsigned long long>(bytes.size()) % area.size);
    // The flash that it goes to may hold nothing that tells where the header stands.
    const FlashImage image(area, Bytes(bytes.begin(), bytes.end()));
    const FlashImage other(area.mirrored(), image.bytes());
    return !surveyOf(image).header && surveyOf(other).header ? other : image;
}

/// Every section that stands anywhere in the file or the camera, wherever its header is: whatever the new area is, the
/// old header is not found any more.
FlashContent contentThatGoes(const Flash::Target& target, const FlashImage& before) {
    FlashContent content;
    const auto addAll = [&content](const FlashImage& image) {
        content.merge(contentOf(image));
        content.merge(contentOf(FlashImage(image.area().mirrored(), image.bytes())));
    };
    if (target.isNew())
        return content;
    addAll(before);
    if (const std::optional<FlashImage> whole = target.whole())
        addAll(*whole);
    return content;
}

} // namespace

std::uint64_t FlashChange::bytes() const noexcept {
    std::uint64_t sum = 0;
    for (const FlashWrite& write : writes)
        sum += write.bytes.size();
    return sum;
}

FlashChange Flash::plan(const FlashImage& before, const FlashContent& wanted,
                        const ChangeOptions& options) const {
    FlashChange change = nothingYet(before);
    const FlashContent old = contentOf(before);
    std::vector<std::string> conflicts;
    for (const std::uint16_t uid : readOnlyConflicts(old, wanted))
        conflicts.push_back(sectionText(uid, old.at(uid)) + " is read only");
    if (!conflicts.empty())
        return refused(std::move(change), Obstacle::ReadOnly, Failure::Permission, name() + refusedText,
                       conflicts);
    change.foreign = foreignChanges(old, wanted);
    if (!change.foreign.empty() && !options.otherCamera) {
        std::vector<std::string> reasons = change.foreign;
        return refused(std::move(change), Obstacle::OtherCamera, Failure::Usage, name() + refusedText,
                       std::move(reasons));
    }
    Rehearsal rehearsal =
        options.rebuild ? rebuild(before, wanted) : rehearse(before, wanted, options.formats);
    if (!rehearsal.isGood())
        return refusedBy(std::move(change), name(), wanted, rehearsal, options.rebuild);
    change.writes = std::move(rehearsal.writes);
    change.after = std::move(rehearsal.image);
    change.lines = change.foreign;
    addSections(change, old, wanted);
    for (std::string& line : freshFaults(before, change.after)) {
        change.takesAway = true;
        change.lines.push_back(std::move(line));
    }
    if (options.rebuild) {
        change.takesAway = true;
        for (std::string& text : givenUp(before, wanted))
            change.lines.push_back(std::move(text));
        change.lines.push_back(Format("the content is rebuilt in chunks of % bytes") %
                               change.after.area().chunkSize);
    } else if (!holdsStorage(before)) {
        change.lines.insert(change.lines.begin(), "it is formatted where it was not");
    }
    return change;
}

FlashChange Flash::planFormat(const FlashImage& before) const {
    FlashArea area = before.area();
    area.chunkSize = target->options.chunkSize;
    area.headerAtStart = target->options.header != FlashOptions::Header::End;
    if (area.size < ROM::ChunkedMemoryManagementHeader::SIZE)
        throw Failure(Failure::Usage, Format("an area of % bytes has no room for a storage") % area.size);
    // On erased flash: whatever stands there now, also a storage with its header at the other end, is given up.
    Rehearsal rehearsal = rehearse(FlashImage(area), {}, true);
    if (!rehearsal.isGood())
        throw Failure(Failure::Usage,
                      Format("an area of % bytes has no room for a storage in chunks of % bytes") %
                          area.size % area.chunkSize);
    FlashChange change = nothingYet(before);
    change.writes = differences(before, rehearsal.image);
    change.after = std::move(rehearsal.image);
    change.takesAway = before.bytes() != FlashImage(before.area()).bytes();
    change.lines.push_back(Format("% is formatted: % bytes in chunks of %, header at the %") % name() %
                           area.size % area.chunkSize % (area.headerAtStart ? "start" : "end"));
    addSections(change, contentThatGoes(*target, before), {});
    return change;
}

FlashChange Flash::planRestore(const FlashImage& before, const std::string& backupFile,
                               const ChangeOptions& options) const {
    FlashChange change = nothingYet(before);
    change.after = imageFromFile(backupFile, before.area());
    if (const FlashSurvey survey = surveyOf(change.after); survey.isFaulty() && !options.damaged) {
        std::vector<std::string> faults;
        for (const Finding& finding : survey.findings)
            if (finding.isFault)
                faults.push_back(finding.text);
        return refused(std::move(change), Obstacle::Damaged, Failure::Verification,
                       "refused, nothing was written; '" + backupFile + "' is damaged:", faults);
    }
    const FlashContent old = contentOf(before);
    const FlashContent fresh = contentOf(change.after);
    change.foreign = foreignChanges(old, fresh);
    const std::string from = serialOfBackup(backupFile);
    const std::string to = target->owner ? target->owner->serial : "";
    if (!from.empty() && !to.empty() && from != to)
        change.foreign.insert(change.foreign.begin(), "it is of camera " + Utils::visibleText(from) +
                                                          ", this one is " + Utils::visibleText(to));
    if (!change.foreign.empty() && !options.otherCamera) {
        std::vector<std::string> reasons = change.foreign;
        return refused(std::move(change), Obstacle::OtherCamera, Failure::Usage,
                       "refused, nothing was written: '" + backupFile + "' looks like another camera's:",
                       std::move(reasons));
    }
    change.writes = differences(before, change.after);
    change.lines = change.foreign;
    addSections(change, old, fresh);
    change.takesAway |= !change.foreign.empty();
    return change;
}

} // namespace Zentara::Host
