#include "host/flash/rehearsal.h"

#include <algorithm>

#include <zentara/rom/section.h>
#include <zentara/utils/format.h>

#include "host/flash/storage.h"

namespace Zentara::Host {
namespace {

using ROM::ContainerSectionType;

/// What goes leaves first, so that its room is there for what comes. What stays as it is is not written again: every write
/// is one that may fail.
void apply(ROM::Container& container, const FlashContent& wanted) {
    for (const auto& [uid, section] : contentOf(container))
        if (wanted.count(uid) == 0)
            container.erase(uid);
    const FlashContent before = contentOf(container);
    for (const auto& [uid, section] : wanted) {
        const auto found = before.find(uid);
        if (found == before.end() || !(found->second == section))
            container.set(uid, static_cast<ContainerSectionType>(section.type), section.flags, section.data);
    }
}

/// What is missing or other than wanted once a copy is loaded afresh.
std::vector<std::string> lossesOf(FlashImage& image, const FlashContent& wanted) {
    std::vector<std::string> losses;
    // Not with the objects that wrote it: they say what they meant to write, the bytes what a camera will read.
    Storage storage(image, image.area());
    storage.container.initialize();
    if (!storage.container.romInitialized())
        losses.emplace_back("the container header would be lost, and every section with it");
    const FlashContent found = contentOf(storage.container);
    for (const auto& [uid, section] : wanted) {
        const auto place = found.find(uid);
        if (place == found.end())
            losses.push_back(sectionText(uid, section) + " would be lost");
        else if (!(place->second == section))
            losses.push_back(sectionText(uid, section) + " would be changed");
    }
    for (const auto& [uid, section] : found)
        if (wanted.count(uid) == 0)
            losses.push_back(sectionText(uid, section) + " would appear");
    const FlashSurvey survey = surveyOf(image);
    if (const Finding* fault = survey.structuralFault(); fault && losses.empty())
        losses.push_back(fault->text);
    return losses;
}

void attemptChange(Rehearsal& rehearsal, const FlashContent& wanted, bool formats) try {
    Storage storage(rehearsal.image, rehearsal.image.area());
    storage.container.initialize();
    if (formats)
        storage.container.initializeRom();
    apply(storage.container, wanted);
} catch (const Plugin::PluginException& failure) {
    rehearsal.refusal = {failure.type(), failure.message()};
}

/// Sections that need one chunk come first: with the header at the end the lowest block's chunks are counted
/// in place of the first one's, so that only the last block may have several.
std::vector<std::uint16_t> bySize(const FlashContent& content) {
    std::vector<std::uint16_t> uids;
    for (const auto& [uid, section] : content)
        uids.push_back(uid);
    std::stable_sort(uids.begin(), uids.end(), [&](std::uint16_t left, std::uint16_t right) {
        return content.at(left).data.size() < content.at(right).data.size();
    });
    return uids;
}

void fill(Rehearsal& rehearsal, const FlashContent& wanted) try {
    Storage storage(rehearsal.image, rehearsal.image.area());
    storage.container.initialize();
    storage.container.initializeRom();
    for (const std::uint16_t uid : bySize(wanted)) {
        const FlashSection& section = wanted.at(uid);
        storage.container.set(uid, static_cast<ContainerSectionType>(section.type), section.flags,
                              section.data);
    }
} catch (const Plugin::PluginException& failure) {
    rehearsal.refusal = {failure.type(), failure.message()};
}

} // namespace

FlashArea areaOf(const FlashSurvey& survey) {
    FlashArea area = survey.area;
    if (survey.header)
        area.chunkSize = survey.header->chunkSize;
    return area;
}

Rehearsal rehearse(const FlashImage& before, const FlashContent& wanted, bool formats) {
    Rehearsal rehearsal{before, {}, {}, {}};
    const FlashSurvey survey = surveyOf(before);
    const Finding* fault = survey.structuralFault();
    // Nothing to lose: no storage that could be loaded, and no whole section that no link leads to.
    const bool isEmpty =
        fault && survey.unreachable.empty() &&
        (fault->kind == FindingKind::NotFormatted || fault->kind == FindingKind::ContainerHeader);
    if (fault && !(formats && isEmpty)) {
        rehearsal.losses.push_back(
            Utils::Format("it is damaged at 0x%{:x8}: %; a change could cost more of it") % fault->address %
            fault->text);
        return rehearsal;
    }
    const std::size_t old = before.writes().size(); // the copy has its original's writes, too
    attemptChange(rehearsal, wanted, formats);
    const auto& writes = rehearsal.image.writes();
    rehearsal.writes.assign(writes.begin() + static_cast<std::ptrdiff_t>(old), writes.end());
    if (!rehearsal.refusal)
        rehearsal.losses = lossesOf(rehearsal.image, wanted);
    return rehearsal;
}

Rehearsal placeAnew(FlashArea area, const FlashContent& wanted) {
    while (true) {
        Rehearsal rehearsal{FlashImage(area), {}, {}, {}};
        fill(rehearsal, wanted);
        if (!rehearsal.refusal)
            rehearsal.losses = lossesOf(rehearsal.image, wanted);
        if (rehearsal.isGood() || area.chunkSize > area.size / 2)
            return rehearsal;
        area.chunkSize *= 2;
    }
}

Rehearsal rebuild(const FlashImage& before, const FlashContent& wanted) {
    Rehearsal rehearsal = placeAnew(areaOf(surveyOf(before)), wanted);
    rehearsal.writes = differences(before, rehearsal.image);
    return rehearsal;
}

} // namespace Zentara::Host
