// Any bytes as a flash image for the host library: what it finds wrong, draws, salvages, and what it says of an image with
// which nothing is wrong. The first byte says where the header stands and where the area begins, as for the
// storage's own target, whose inputs serve for both.
#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include <zentara/host/flash_map.h>
#include <zentara/host/flash_survey.h>

#include "host/flash/storage.h"

namespace {

using namespace Zentara::Host;

void require(bool holds) {
    if (!holds)
        std::abort();
}

/// The library, whose code is another, reads the same.
void checkAgreement(const FlashImage& image, const FlashSurvey& survey) {
    FlashImage copy = image;
    Storage storage(copy, copy.area());
    storage.container.initialize();
    require(storage.container.romInitialized());
    require(contentOf(storage.container) == survey.linkedContent());
    require(copy.writes().empty());
}

void checkPlaces(const FlashImage& image, const FlashSurvey& survey) {
    const FlashArea& area = image.area();
    for (const Finding& finding : survey.findings)
        require(area.holds(finding.address, 0));
    for (const SurveyedSection& section : survey.unreachable)
        require(area.holds(section.address, section.content.data.size() + 13));
}

void checkMap(const FlashMap& map, const FlashArea& area) {
    for (const FlashRegion& region : map.regions())
        require(region.length > 0 && area.holds(region.address, region.length));
    if (area.size > 0)
        static_cast<void>(map.text());
}

/// What was salvaged stands in a new image of the size, or the reason why not is told.
void checkSalvage(const FlashImage& image) {
    const FlashSalvage salvage = salvageOf(image);
    require(salvage.image ? contentOf(*salvage.image) == salvage.content : !salvage.whyNot.empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::size_t start = std::min<std::size_t>((data[0] >> 1 & 3u) * 64, size - 1);
    const FlashArea area{static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(size - 1 - start), 64,
                         (data[0] & 1) != 0};
    const FlashImage image(area, Bytes(data + 1 + start, data + size));
    const FlashSurvey survey = surveyOf(image);
    if (!survey.structuralFault())
        checkAgreement(image, survey);
    checkPlaces(image, survey);
    checkMap(FlashMap(survey), area);
    checkSalvage(image);
    return 0;
}
