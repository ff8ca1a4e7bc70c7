#include "tools/zentara/rom/rom_json.h"

#include <set>
#include <vector>

#include "tools/zentara/rom/rom_record.h"

namespace Zentara::Tool {
namespace {

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
    try {
        if (encodeFields(layout, JsonPlace(*fields)) == record.data)
            return fields;
    } catch (const RomJsonError&) { // a number that JSON does not have
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
    return {layout->marker, RECORD_VERSION, encodeFields(*layout, place)};
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

} // namespace

Json sectionToJson(std::uint16_t uid, const RomSection& section) {
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

Json contentToJson(const RomContent& content) {
    Json json{{"schema", romJsonSchema}, {"kind", kindOfDocument}, {"sections", Json::array()}};
    for (const auto& [uid, section] : content)
        json["sections"].push_back(sectionToJson(uid, section));
    return json;
}

Json parseJson(const std::string& text) {
    std::vector<std::set<std::string>> keys;
    const auto watch = [&](int, Json::parse_event_t event, Json& value) {
        if (event == Json::parse_event_t::object_start)
            keys.emplace_back();
        else if (event == Json::parse_event_t::object_end)
            keys.pop_back();
        else if (event == Json::parse_event_t::key && !keys.back().insert(value.get<std::string>()).second)
            throw RomJsonError("the key '" + value.get<std::string>() + "' stands twice in one object");
        return true;
    };
    try {
        return Json::parse(text, watch);
    } catch (const Json::exception& failure) {
        throw RomJsonError(failure.what());
    }
}

std::pair<std::uint16_t, RomSection> sectionFromJson(const JsonPlace& place) {
    const auto uid = static_cast<std::uint16_t>(place.at("uid").number(1, 0xFFFF));
    RomSection section;
    section.type = typeFromJson(place.at("type"));
    section.flags = static_cast<std::uint8_t>(place.at("flags").number(0, 0xFF));
    section.data = dataFromJson(section.type, place);
    return {uid, std::move(section)};
}

RomContent contentFromJson(const Json& document) {
    const JsonPlace root(document);
    root.allow({"schema", "kind", "sections"});
    static_cast<void>(root.at("schema").number(romJsonSchema, romJsonSchema));
    if (root.at("kind").text() != kindOfDocument)
        root.at("kind").fail(std::string("expected \"") + kindOfDocument + "\"");
    RomContent content;
    for (const JsonPlace& place : root.at("sections").items())
        if (!content.insert(sectionFromJson(place)).second)
            place.at("uid").fail("the uid stands twice");
    return content;
}

} // namespace Zentara::Tool
