#include "plugins/descriptions/json_fields.h"

#include <charconv>
#include <cmath>
#include <utility>

#include <zentara/core/guids.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

namespace Zentara::Cameras {
namespace {

using Utils::Format;

std::optional<std::uint64_t> hexadecimal(const std::string& digits) {
    std::uint64_t value = 0;
    const char* end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, value, 16);
    if (result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return value;
}

std::optional<std::uint64_t> wholeOf(const LocatedJson& value) {
    if (value.kind == LocatedJson::Kind::Whole)
        return value.whole;
    if (value.kind == LocatedJson::Kind::Text && value.text.rfind("0x", 0) == 0)
        return hexadecimal(value.text.substr(2));
    return std::nullopt;
}

/// 8-4-4-4-12 hexadecimal digits.
std::optional<GUID> guidOf(std::string text) {
    if (text.size() == 38 && text.front() == '{' && text.back() == '}')
        text = text.substr(1, 36);
    if (text.size() != 36 || text[8] != '-' || text[13] != '-' || text[18] != '-' || text[23] != '-')
        return std::nullopt;
    const auto first = hexadecimal(text.substr(0, 8));
    const auto second = hexadecimal(text.substr(9, 4));
    const auto third = hexadecimal(text.substr(14, 4));
    const auto fourth = hexadecimal(text.substr(19, 4));
    const auto last = hexadecimal(text.substr(24));
    if (!first || !second || !third || !fourth || !last)
        return std::nullopt;
    GUID guid{};
    guid.Data1 = static_cast<std::uint32_t>(*first);
    guid.Data2 = static_cast<std::uint16_t>(*second);
    guid.Data3 = static_cast<std::uint16_t>(*third);
    const std::uint64_t tail = *fourth << 48 | *last;
    for (int i = 0; i < 8; ++i)
        guid.Data4[i] = static_cast<std::uint8_t>(tail >> (56 - 8 * i));
    return guid;
}

} // namespace

JsonValue::JsonValue(const LocatedJson& located, const std::string& sourceName, std::string fieldPath)
    : value(&located), source(&sourceName), path(std::move(fieldPath)) {}

void JsonValue::fail(const std::string& reason) const {
    throw Plugin::ConfigurationPluginException(Format("%, line %, %: %") % *source % value->line %
                                               (path.empty() ? "the whole" : path) % reason);
}

void JsonValue::require(LocatedJson::Kind kind, const char* what) const {
    if (value->kind != kind)
        fail(Format("must be %") % what);
}

std::string JsonValue::text() const {
    require(LocatedJson::Kind::Text, "a text");
    return value->text;
}

std::string JsonValue::name() const {
    if (text().empty())
        fail("must not be empty");
    return value->text;
}

bool JsonValue::truth() const {
    require(LocatedJson::Kind::Bool, "true or false");
    return value->truth;
}

float JsonValue::number() const {
    if (value->kind != LocatedJson::Kind::Whole)
        require(LocatedJson::Kind::Number, "a number");
    const auto result = static_cast<float>(value->number);
    if (!std::isfinite(result))
        fail("is too great");
    return result;
}

std::uint64_t JsonValue::whole(std::uint64_t least, std::uint64_t most) const {
    const std::optional<std::uint64_t> found = wholeOf(*value);
    if (!found || *found < least || *found > most)
        fail(Format("must be a whole number from % to %") % least % most);
    return *found;
}

std::int64_t JsonValue::signedWhole(std::int64_t least, std::int64_t most) const {
    const bool isNumber = value->kind == LocatedJson::Kind::Whole || value->kind == LocatedJson::Kind::Number;
    const double found = isNumber ? value->number : std::nan("");
    if (!(found >= static_cast<double>(least) && found <= static_cast<double>(most)) ||
        found != std::floor(found))
        fail(Format("must be a whole number from % to %") % least % most);
    return static_cast<std::int64_t>(found);
}

GUID JsonValue::guid() const {
    const std::string found = text();
    std::size_t count = 0;
    const Core::WellKnownGuid* known = Core::wellKnownGuids(count);
    for (std::size_t i = 0; i < count; ++i) {
        if (found == known[i].name)
            return known[i].guid;
    }
    const std::optional<GUID> parsed = guidOf(found);
    if (!parsed)
        fail(Format("'%' is neither a well-known name nor a GUID") % found);
    return *parsed;
}

std::vector<JsonValue> JsonValue::list(std::size_t most) const {
    require(LocatedJson::Kind::List, "a list");
    if (value->items.size() > most)
        fail(Format("must have % elements at most, not %") % most % value->items.size());
    std::vector<JsonValue> elements;
    for (const LocatedJson& item : value->items)
        elements.emplace_back(item, *source, Format("%[%]") % path % elements.size());
    return elements;
}

JsonFields::JsonFields(JsonValue value) : object(std::move(value)) {
    object.require(LocatedJson::Kind::Object, "an object");
}

// Whoever asks for a field knows it: finish() refuses those that nobody asked for.
std::optional<JsonValue> JsonFields::find(const char* name) {
    known.insert(name);
    for (const LocatedJson& located : object.value->items) {
        if (located.name == name)
            return member(located);
    }
    return std::nullopt;
}

JsonValue JsonFields::need(const char* name) {
    const std::optional<JsonValue> found = find(name);
    if (!found)
        object.fail(Format("the field '%' is missing") % name);
    return *found;
}

bool JsonFields::has(const char* name) const {
    for (const LocatedJson& located : object.value->items) {
        if (located.name == name)
            return true;
    }
    return false;
}

void JsonFields::finish() const {
    for (const LocatedJson& located : object.value->items) {
        if (known.count(located.name) == 0)
            member(located).fail("there is no such field");
    }
}

JsonValue JsonFields::member(const LocatedJson& located) const {
    return {located, *object.source, object.path.empty() ? located.name : object.path + "." + located.name};
}

} // namespace Zentara::Cameras
