#include "tools/zentara/cameras/parameter_text.h"

#include <array>
#include <cmath>
#include <limits>

#include <zentara/utils/format.h>

#include "host/float_text.h"
#include "host/json_fields.h"
#include "tools/zentara/exit_code.h"

namespace Zentara::Tool {

using Utils::Format;

namespace {

constexpr std::array<const char*, 4> regionFields{"x", "y", "width", "height"};

[[noreturn]] void refuse(int parameter, const std::string& what, const char* wanted) {
    throw Failure(Failure::Usage, Format("parameter % takes %, not %") % parameter % wanted % what);
}

Json numberJson(double number, ParameterKind kind) {
    if (kind == ParameterKind::Float)
        return floatJson(static_cast<float>(number));
    return static_cast<std::int64_t>(number);
}

Json rangeJson(const NumberRange& range, ParameterKind kind) {
    if (!range.isList)
        return {{"minimum", numberJson(range.least, kind)},
                {"maximum", numberJson(range.greatest, kind)},
                {"step", numberJson(range.step, kind)}};
    Json json{{"values", Json::array()}};
    for (const double value : range.values)
        json["values"].push_back(numberJson(value, kind));
    return json;
}

Json rangesJson(const Parameter& parameter) {
    if (parameter.ranges.empty())
        return {};
    if (parameter.kind != ParameterKind::Region)
        return rangeJson(parameter.ranges.front(), parameter.kind);
    Json json;
    for (std::size_t index = 0; index < parameter.ranges.size() && index < regionFields.size(); ++index)
        json[regionFields[index]] = rangeJson(parameter.ranges[index], parameter.kind);
    return json;
}

RegionOfInterestInternal regionFrom(int parameter, const Json& json, const std::string& found) {
    std::array<std::uint32_t, 4> words{};
    for (std::size_t index = 0; index < words.size(); ++index) {
        const Json word = json.is_object() ? json.value(regionFields[index], Json()) : Json();
        if (!word.is_number_unsigned() || word.get<std::uint64_t>() > 0xFFFF || json.size() != words.size())
            refuse(parameter, found, "x, y, width and height, 0 to 65535 each");
        words[index] = word.get<std::uint32_t>();
    }
    return {words[0], words[1], words[2], words[3]};
}

} // namespace

Json toJson(const Host::ParameterValue& value) {
    if (const auto* number = std::get_if<float>(&value))
        return floatJson(*number);
    if (const auto* number = std::get_if<std::int32_t>(&value))
        return *number;
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag;
    const auto& region = std::get<RegionOfInterestInternal>(value);
    return {{"x", region.x}, {"y", region.y}, {"width", region.width}, {"height", region.height}};
}

Host::ParameterValue valueFromJson(int parameter, const Json& json, const std::string& source) {
    const std::string found = shortText(json) + " in " + source;
    const auto kind = parameterKind(parameter);
    if (!kind)
        throw Failure(Failure::Usage, Format("there is no parameter %") % parameter);
    switch (*kind) {
    case ParameterKind::Float:
        if (!json.is_number() || !std::isfinite(json.get<float>()))
            refuse(parameter, found, "a number");
        return json.get<float>();
    case ParameterKind::Int:
        if (!json.is_number_integer() || json.get<double>() < std::numeric_limits<int>::min() ||
            json.get<double>() > std::numeric_limits<int>::max())
            refuse(parameter, found, "a whole number of 32 bits");
        return json.get<std::int32_t>();
    case ParameterKind::Bool:
        if (!json.is_boolean())
            refuse(parameter, found, "true or false");
        return json.get<bool>();
    case ParameterKind::Region:
        break;
    }
    return regionFrom(parameter, json, found);
}

Host::ParameterValue valueFromText(int parameter, const std::string& text) {
    const std::string source = "the command line";
    if (text == "on" || text == "off")
        return valueFromJson(parameter, Json(text == "on"), source);
    Json json =
        text.find_first_of("[{") == std::string::npos ? Json::parse(text, nullptr, false) : Json(text);
    if (json.is_discarded() && text.find(',') != std::string::npos) {
        const Json list = Json::parse("[" + text + "]", nullptr, false);
        json = Json::object();
        for (std::size_t index = 0; index < list.size() && list.size() == regionFields.size(); ++index)
            json[regionFields[index]] = list[index];
    }
    if (json.is_discarded())
        json = text;
    return valueFromJson(parameter, json, source);
}

Json toJson(const Host::ParameterValues& values) {
    Json json = Json::object();
    for (const auto& [number, value] : values)
        json[std::to_string(number)] = toJson(value);
    return json;
}

const char* accessName(const Host::Parameter& parameter) noexcept {
    if (parameter.isReadable)
        return parameter.isWritable ? "read-write" : "read";
    return parameter.isWritable ? "write" : "-";
}

Json toJson(const Host::Parameter& parameter) {
    return {{"parameter", parameter.number},
            {"name", orNull(parameter.name)},
            {"supported", parameter.isSupported},
            {"kind", kindName(parameter.kind)},
            {"unit", unitName(parameter.unit)},
            {"access", accessName(parameter)},
            {"value", parameter.value ? toJson(*parameter.value) : Json()},
            {"range", rangesJson(parameter)}};
}

} // namespace Zentara::Tool
