#include "host/flash/content_json.h"

#include <vector>

#include <zentara/host/failure.h>
#include <zentara/utils/format.h>

#include "host/flash/records.h"
#include "host/json_file.h"

namespace Zentara::Host {
namespace {

/// Raised when a document of before can no longer be read.
constexpr int contentSchema = 1;
constexpr const char* kindOfDocument = "rom content";

bool isPrintable(const Json& fields) {
    try {
        static_cast<void>(fields.dump());
        return true;
    } catch (const Json::exception&) { // a text that is no UTF-8
        return false;
    }
}

/// The fields of a record if they say all of its bytes; else nothing.
std::optional<Json> wholeFields(const RecordLayout& layout, const RawRecord& record) {
    if (record.version != RECORD_VERSION)
        return std::nullopt;
    auto fields = decodeFields(layout, record.data);
    if (!fields || !isPrintable(*fields))
        return std::nullopt;
    // Made anew and compared: what the fields do not say, such as surplus bytes, would be lost otherwise.
    try {
        if (encodeFields(layout, JsonPlace(*fields)) == record.data)
            return fields;
    } catch (const JsonError&) { // a number that JSON does not have
    }
    return std::nullopt;
}

Json recordToJson(std::uint8_t sectionType, const RawRecord& record) {
    const RecordLayout* layout = recordLayout(sectionType, record.marker);
    if (layout) {
        if (const auto fields = wholeFields(*layout, record)) {
            Json json{{"record", layout->name}};
            json.update(*fields);
            return json;
        }
    }
    return {{"marker", record.marker}, {"version", record.version}, {"data", toHex(record.data)}};
}

RawRecord rawFromJson(const JsonPlace& place) {
    place.allow({"marker", "version", "data"});
    return {static_cast<std::uint8_t>(place.at("marker").number(0, 0xFF)),
            static_cast<std::uint8_t>(place.at("version").number(0, 0xFF)), place.at("data").hex()};
}

RawRecord recordFromJson(std::uint8_t sectionType, const JsonPlace& place) {
    if (!place.has("record"))
        return rawFromJson(place);
    const RecordLayout* layout = recordLayout(sectionType, place.at("record").text());
    if (!layout)
        place.at("record").fail("no such record in a section of type " + sectionTypeText(sectionType));
    std::vector<std::string> keys{"record"};
    for (const RecordField& field : layout->fields)
        keys.emplace_back(field.name);
    place.allow(keys);
    return {static_cast<std::uint8_t>(layout->marker), RECORD_VERSION, encodeFields(*layout, place)};
}

std::uint8_t typeFromJson(const JsonPlace& place) {
    if (!place.isText())
        return static_cast<std::uint8_t>(place.number(0, 0xFF));
    const auto type = sectionTypeFromName(place.text());
    if (!type)
        place.fail("no such section type; it is systemInfo, systemCalibration, configuration, diagnostic, "
                   "gradientDistortionCorrection or a number");
    return *type;
}

Bytes dataFromJson(std::uint8_t type, const JsonPlace& place) {
    if (place.has("data")) {
        place.allow({"uid", "type", "flags", "data"});
        return place.at("data").hex();
    }
    place.allow({"uid", "type", "flags", "records", "trailing"});
    Bytes data;
    for (const JsonPlace& record : place.at("records").items())
        appendRecord(data, recordFromJson(type, record));
    if (place.has("trailing")) {
        const Bytes trailing = place.at("trailing").hex();
        data.insert(data.end(), trailing.begin(), trailing.end());
    }
    return data;
}

std::pair<std::uint16_t, FlashSection> sectionAt(const JsonPlace& place) {
    const auto uid = static_cast<std::uint16_t>(place.at("uid").number(1, 0xFFFF));
    FlashSection section;
    section.type = typeFromJson(place.at("type"));
    section.flags = static_cast<std::uint8_t>(place.at("flags").number(0, 0xFF));
    section.data = dataFromJson(section.type, place);
    return {uid, std::move(section)};
}

} // namespace

Json sectionJson(std::uint16_t uid, const FlashSection& section) {
    Json json{{"uid", uid}};
    const char* typeName = sectionTypeName(section.type);
    if (!typeName) {
        json.update({{"type", section.type}, {"flags", section.flags}, {"data", toHex(section.data)}});
        return json;
    }
    json["type"] = typeName;
    json["flags"] = section.flags;
    const SplitData split = splitRecords(section.data);
    json["records"] = Json::array();
    for (const RawRecord& record : split.records)
        json["records"].push_back(recordToJson(section.type, record));
    if (!split.trailing.empty())
        json["trailing"] = toHex(split.trailing);
    return json;
}

std::string toJson(const FlashContent& content) {
    Json json{{"schema", contentSchema}, {"kind", kindOfDocument}, {"sections", Json::array()}};
    for (const auto& [uid, section] : content)
        json["sections"].push_back(sectionJson(uid, section));
    return printed(json);
}

std::string toJson(std::uint16_t uid, const FlashSection& section) {
    return printed(sectionJson(uid, section));
}

FlashContent contentFromJson(const std::string& text, const std::string& source) {
    return readingFrom(source, [&text] {
        const Json document = parseJson(text);
        const JsonPlace root(document);
        root.allow({"schema", "kind", "sections"});
        static_cast<void>(root.at("schema").number(contentSchema, contentSchema));
        if (root.at("kind").text() != kindOfDocument)
            root.at("kind").fail(std::string("expected \"") + kindOfDocument + "\"");
        FlashContent content;
        for (const JsonPlace& place : root.at("sections").items())
            if (!content.insert(sectionAt(place)).second)
                place.at("uid").fail("the uid stands twice");
        return content;
    });
}

FlashSection sectionFromJson(const std::string& text, const std::string& source, std::uint16_t uid) {
    return readingFrom(source, [&text, uid] {
        const Json document = parseJson(text);
        const JsonPlace root(document);
        const JsonPlace place = root.has("section") ? root.at("section") : root;
        auto [found, section] = sectionAt(place);
        if (found != uid)
            place.at("uid").fail(Utils::Format("it is section %, not %") % found % uid);
        return section;
    });
}

} // namespace Zentara::Host
