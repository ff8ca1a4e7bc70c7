#include "host/flash/content_json.h"

#include <set>
#include <vector>

#include "host/flash/records.h"

namespace Zentara::Host {
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
    } catch (const JsonPlaceError&) { // a number that JSON does not have
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

/// Finds a key that stands twice in one object: the parser keeps the last one and says nothing.
class KeyWatch {
public:
    void see(Json::parse_event_t event, const Json& value) {
        using Event = Json::parse_event_t;
        if (event == Event::object_start || event == Event::array_start)
            open.push_back({event == Event::array_start, 0, {}, {}});
        else if (event == Event::key)
            seeKey(value.get<std::string>());
        else
            seeEnd(event != Event::value);
    }

private:
    struct Level {
        bool isArray;
        std::size_t index; ///< of the item that comes next
        std::string key;   ///< the last one
        std::set<std::string> keys;
    };

    void seeKey(const std::string& key) {
        open.back().key = key;
        if (!open.back().keys.insert(key).second)
            throw JsonPlaceError(path() + ": the key stands twice in one object");
    }
    void seeEnd(bool isLevel) {
        if (isLevel)
            open.pop_back();
        if (!open.empty())
            ++open.back().index;
    }
    [[nodiscard]] std::string path() const {
        std::string text;
        for (const Level& level : open)
            text += '/' + (level.isArray ? std::to_string(level.index) : level.key);
        return text;
    }

    std::vector<Level> open;
};

} // namespace

Json sectionToJson(std::uint16_t uid, const FlashSection& section) {
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

Json contentToJson(const FlashContent& content) {
    Json json{{"schema", contentSchema}, {"kind", kindOfDocument}, {"sections", Json::array()}};
    for (const auto& [uid, section] : content)
        json["sections"].push_back(sectionToJson(uid, section));
    return json;
}

Json parseJson(const std::string& text) {
    KeyWatch keys;
    const auto watch = [&](int, Json::parse_event_t event, const Json& value) {
        keys.see(event, value);
        return true;
    };
    try {
        return Json::parse(text, watch);
    } catch (const Json::exception& failure) {
        throw JsonPlaceError(failure.what());
    }
}

std::pair<std::uint16_t, FlashSection> sectionFromJson(const JsonPlace& place) {
    const auto uid = static_cast<std::uint16_t>(place.at("uid").number(1, 0xFFFF));
    FlashSection section;
    section.type = typeFromJson(place.at("type"));
    section.flags = static_cast<std::uint8_t>(place.at("flags").number(0, 0xFF));
    section.data = dataFromJson(section.type, place);
    return {uid, std::move(section)};
}

FlashContent contentFromJson(const Json& document) {
    const JsonPlace root(document);
    root.allow({"schema", "kind", "sections"});
    static_cast<void>(root.at("schema").number(contentSchema, contentSchema));
    if (root.at("kind").text() != kindOfDocument)
        root.at("kind").fail(std::string("expected \"") + kindOfDocument + "\"");
    FlashContent content;
    for (const JsonPlace& place : root.at("sections").items())
        if (!content.insert(sectionFromJson(place)).second)
            place.at("uid").fail("the uid stands twice");
    return content;
}

} // namespace Zentara::Host
