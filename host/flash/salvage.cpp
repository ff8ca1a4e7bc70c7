#include <zentara/host/flash_survey.h>
#include <zentara/utils/format.h>

#include "host/flash/rehearsal.h"

namespace Zentara::Host {
namespace {

void add(FlashSalvage& salvage, const SurveyedSection& section, const char* how) {
    std::string what = how;
    if (section.uid == 0)
        what = "left out: the uid 0 cannot be written";
    else if (!salvage.content.emplace(section.uid, section.content).second)
        what = "left out: there is another section of that uid";
    salvage.lines.push_back(Utils::Format("0x%{:x8}  %: %") % section.address %
                            sectionText(section.uid, section.content) % what);
}

} // namespace

FlashSalvage salvageOf(const FlashImage& image) {
    FlashSalvage salvage;
    const FlashSurvey survey = surveyOf(image);
    // From the end of the chain, for the first one of a uid is kept: of two linked ones the later one counts. What no link
    // leads to comes after them.
    for (auto block = survey.blocks.rbegin(); block != survey.blocks.rend(); ++block)
        if (block->section)
            add(salvage, *block->section, "linked");
    for (const SurveyedSection& section : survey.unreachable)
        add(salvage, section, "found; it was cut off, or erased");
    if (salvage.content.empty()) {
        salvage.whyNot = "no whole section was found";
        return salvage;
    }
    Rehearsal fresh = placeAnew(areaOf(survey), salvage.content);
    if (fresh.isGood())
        salvage.image = std::move(fresh.image);
    else
        salvage.whyNot = "what was found does not fit into an image of that size: " +
                         (fresh.refusal ? fresh.refusal->message : fresh.losses.front());
    return salvage;
}

} // namespace Zentara::Host
