#include "host/flash/json_place.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <zentara/utils/format.h>

namespace Zentara::Host {

void JsonPlace::fail(const std::string& reason) const {
    throw JsonPlaceError((path.empty() ? "/" : path) + ": " + reason);
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
        fail(Utils::Format("expected a whole number from % to %") % static_cast<long long>(least) %
             static_cast<long long>(most));
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
