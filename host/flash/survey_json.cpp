#include <zentara/host/flash_survey.h>

#include "host/json_file.h"

namespace Zentara::Host {

namespace {

Json headerJson(const SurveyedHeader& header, const FlashArea& area) {
    return {{"address", area.headerAddress()},
            {"version", header.version},
            {"minReadoutVersion", header.minReadoutVersion},
            {"availableSize", header.availableSize},
            {"chunkSize", header.chunkSize},
            {"firstBlock", header.firstBlock},
            {"crc", header.crc}};
}

Json placedJson(const SurveyedBlock& block) {
    const SurveyedSection& section = *block.section;
    return {{"uid", section.uid},
            {"type", section.content.type},
            {"typeName", sectionTypeText(section.content.type)},
            {"flags", section.content.flags},
            {"size", section.content.data.size()},
            {"address", block.address},
            {"allocatedSize", block.allocatedSize},
            {"headerCrc", section.headerCrc},
            {"dataCrc", section.dataCrc}};
}

Json findingsJson(const FlashSurvey& survey) {
    Json json = Json::array();
    for (const Finding& finding : survey.findings)
        json.push_back({{"address", finding.address},
                        {"kind", findingKindName(finding.kind)},
                        {"fault", finding.isFault},
                        {"text", finding.text}});
    return json;
}

} // namespace

std::string toJson(const FlashSurvey& survey) {
    const FlashArea& area = survey.area;
    Json json{{"area", {{"start", area.start}, {"size", area.size}, {"headerAtStart", area.headerAtStart}}}};
    if (survey.header)
        json["header"] = headerJson(*survey.header, area);
    const FreeSpace& room = survey.freeSpace;
    json["free"] = {{"bytes", room.bytes},
                    {"gaps", room.gaps.size()},
                    {"largestGap", room.largestGap},
                    {"fragmentationPercent", room.fragmentationPercent()}};
    json["sections"] = Json::array();
    for (const SurveyedBlock& block : survey.blocks)
        if (block.section)
            json["sections"].push_back(placedJson(block));
    json["findings"] = findingsJson(survey);
    json["faulty"] = survey.isFaulty();
    return printed(json);
}

} // namespace Zentara::Host
