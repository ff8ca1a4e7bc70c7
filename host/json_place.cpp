#include "host/json_place.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include <zentara/utils/format.h>

namespace Zentara::Host {
namespace {

constexpr std::size_t mostDepth = 64; // what looks at a value calls itself for each level

/// Finds a key that stands twice in one object: the parser keeps the last one and says nothing.
class KeyWatch {
public:
    void see(Json::parse_event_t event, const Json& value) {
        using Event = Json::parse_event_t;
        if (event == Event::object_start || event == Event::array_start)
            seeBegin(event == Event::array_start);
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

    void seeBegin(bool isArray) {
        if (open.size() >= mostDepth)
            throw JsonError(Utils::Format("more than % values stand one in the other") % mostDepth);
        open.push_back({isArray, 0, {}, {}});
    }
    void seeKey(const std::string& key) {
        open.back().key = key;
        if (!open.back().keys.insert(key).second)
            throw JsonError(path() + ": the field \"" + key + "\" stands twice in one object");
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

/// Without the library's name for it, in brackets.
std::string reasonOf(const Json::exception& failure) {
    const std::string text = failure.what();
    const std::size_t end = text.find("] ");
    return end == std::string::npos ? text : text.substr(end + 2);
}

} // namespace

Json parseJson(const std::string& text) {
    KeyWatch keys;
    const auto watch = [&](int, Json::parse_event_t event, const Json& value) {
        keys.see(event, value);
        return true;
    };
    try {
        return Json::parse(text, watch);
    } catch (const Json::exception& failure) {
        throw JsonError(reasonOf(failure));
    }
}

std::string shortText(const Json& value) {
    constexpr std::size_t mostShown = 40;
    if (value.is_structured())
        return value.is_object() ? "an object" : "a list";
    std::string text = value.dump(-1, ' ', true, Json::error_handler_t::replace);
    if (text.size() > mostShown)
        text.replace(mostShown - 3, std::string::npos, "...");
    return text;
}

void JsonPlace::fail(const std::string& reason) const {
    throw JsonError((path.empty() ? "/" : path) + ": " + reason);
}

void JsonPlace::checkObject() const {
    if (!value->is_object())
        fail("expected an object");
}

void JsonPlace::allow(std::initializer_list<const char*> keys) const {
    allow(std::vector<std::string>(keys.begin(), keys.end()));
}

void JsonPlace::allow(const std::vector<std::string>& keys) const {
    checkObject();
    for (const auto& [key, unused] : value->items())
        if (std::find(keys.begin(), keys.end(), key) == keys.end())
            JsonPlace(*value, path + "/" + key).fail("no such field is known here");
}

bool JsonPlace::has(const std::string& key) const {
    checkObject();
    return value->contains(key);
}

JsonPlace JsonPlace::at(const std::string& key) const {
    checkObject();
    const auto found = value->find(key);
    if (found == value->end())
        JsonPlace(*value, path + "/" + key).fail("is missing");
    return {*found, path + "/" + key};
}

std::vector<JsonPlace> JsonPlace::items() const {
    if (!value->is_array())
        fail("expected an array");
    std::vector<JsonPlace> places;
    for (const Json& item : *value)
        places.push_back({item, path + "/" + std::to_string(places.size())});
    return places;
}

std::vector<std::pair<std::string, JsonPlace>> JsonPlace::fields() const {
    checkObject();
    std::vector<std::pair<std::string, JsonPlace>> places;
    for (const auto& [key, field] : value->items())
        places.emplace_back(key, JsonPlace(field, path + "/" + key));
    return places;
}

std::string JsonPlace::text() const {
    if (!isText())
        fail("expected a text");
    return value->get<std::string>();
}

std::int64_t JsonPlace::number(std::int64_t least, std::int64_t most) const {
    const bool tooGreat =
        value->is_number_unsigned() &&
        value->get<std::uint64_t>() > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (!value->is_number_integer() || tooGreat || value->get<std::int64_t>() < least ||
        value->get<std::int64_t>() > most)
        fail(Utils::Format("expected a whole number from % to %, not %") % static_cast<long long>(least) %
             static_cast<long long>(most) % shortText(*value));
    return value->get<std::int64_t>();
}

float JsonPlace::real() const {
    if (!value->is_number())
        fail("expected a number");
    const double wide = value->get<double>();
    if (!(std::abs(wide) <= static_cast<double>(std::numeric_limits<float>::max())))
        fail("the number does not fit in 32 bits");
    return static_cast<float>(wide);
}

Bytes JsonPlace::hex() const {
    auto bytes = fromHex(text());
    if (!bytes)
        fail("expected pairs of hexadecimal digits");
    return *std::move(bytes);
}

} // namespace Zentara::Host
