#include "host/json_fields.h"

#include <algorithm>
#include <iostream>
#include <sstream>

#include <zentara/utils/format.h>

#include "host/files/file_failure.h"
#include "host/json_place.h"
#include <zentara/host/failure.h>

namespace Zentara::Host {

using Utils::Format;

namespace {

constexpr std::size_t mostBytes = 1 << 24;
constexpr std::size_t mostShown = 40;

/// Standard input, as far as it may be; one byte more tells that it is longer.
std::string readInput() {
    std::string text(mostBytes + 1, '\0');
    std::cin.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(std::cin.gcount()));
    if (text.size() > mostBytes)
        throw Failure(Failure::Failed, Format("standard input has more than % bytes") % mostBytes);
    return text;
}

} // namespace

Json readJsonFile(const std::string& path) {
    try {
        return parseJson(path == "-" ? readInput() : readFileBytes(path, mostBytes));
    } catch (const JsonError& failure) {
        throw Failure(Failure::Failed, Format("'%' is no JSON: %") % path % failure.what());
    }
}

void writeJsonFile(const std::string& path, const Json& json, const OutputFile::Rules& rules) {
    std::ostringstream text;
    text << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    OutputFile file(path, rules);
    file.write(text.str());
    file.commit();
}

std::string shortText(const Json& value) {
    if (value.is_structured())
        return value.is_object() ? "an object" : "a list";
    std::string text = value.dump(-1, ' ', true, Json::error_handler_t::replace);
    if (text.size() > mostShown)
        text.replace(mostShown - 3, std::string::npos, "...");
    return text;
}

JsonFields::JsonFields(const Json& object, const std::string& source, std::string way)
    : json(object), file(source), path(std::move(way)) {
    if (!json.is_object())
        fail("", "is no object");
}

const Json& JsonFields::need(const std::string& name) {
    known.insert(name);
    const auto found = json.find(name);
    if (found == json.end())
        fail(name, "is missing");
    return *found;
}

std::vector<std::int32_t> JsonFields::integers(const std::string& name, std::size_t most) {
    const Json& list = need(name);
    if (!list.is_array() || list.size() > most)
        fail(name, Format("takes a list of at most % whole numbers") % most);
    std::vector<std::int32_t> values;
    for (const Json& element : list)
        values.push_back(static_cast<std::int32_t>(
            numberIn(element, name + "/" + std::to_string(values.size()),
                     std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max())));
    return values;
}

void JsonFields::refuseOthers(std::initializer_list<const char*> others) const {
    for (const auto& [name, value] : json.items()) {
        if (known.count(name) == 0 && std::find(others.begin(), others.end(), name) == others.end())
            fail(name, "is no field that is known here");
    }
}

std::string JsonFields::place(const std::string& name) const {
    const std::string whole = name.empty() ? path : path + "/" + name;
    return Format("'%', %") % file % (whole.empty() ? "/" : whole);
}

void JsonFields::fail(const std::string& name, const std::string& what) const {
    throw Failure(Failure::Failed, place(name) + ": " + what);
}

std::int64_t JsonFields::numberIn(const Json& value, const std::string& name, std::int64_t least,
                                  std::int64_t most) const {
    const bool fits =
        value.is_number_integer() &&
        (!value.is_number_unsigned() || value.get<std::uint64_t>() <= static_cast<std::uint64_t>(most)) &&
        value.get<std::int64_t>() >= least && value.get<std::int64_t>() <= most;
    if (!fits)
        fail(name, Format("takes a whole number from % to %, not %") % least % most % shortText(value));
    return value.get<std::int64_t>();
}

} // namespace Zentara::Host
