#include "host/cameras/parameter_json.h"

#include <array>
#include <cmath>
#include <limits>

#include <zentara/host/failure.h>
#include <zentara/utils/format.h>

#include "host/float_text.h"
#include "host/json_file.h"

namespace Zentara::Host {

using Utils::Format;

namespace {

constexpr std::array<const char*, 4> regionKeys{"x", "y", "width", "height"};

[[noreturn]] void refuseValue(int number, const Json& json, const char* wanted) {
    throw Failure(Failure::Usage, Format("parameter % takes %, not %") % number % wanted % shortText(json));
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
    for (std::size_t index = 0; index < parameter.ranges.size() && index < regionKeys.size(); ++index)
        json[regionKeys[index]] = rangeJson(parameter.ranges[index], parameter.kind);
    return json;
}

RegionOfInterestInternal regionFrom(int number, const Json& json) {
    std::array<std::uint32_t, 4> words{};
    for (std::size_t index = 0; index < words.size(); ++index) {
        const Json word = json.is_object() ? json.value(regionKeys[index], Json()) : Json();
        if (!word.is_number_unsigned() || word.get<std::uint64_t>() > 0xFFFF || json.size() != words.size())
            refuseValue(number, json, "x, y, width and height, 0 to 65535 each");
        words[index] = word.get<std::uint32_t>();
    }
    return {words[0], words[1], words[2], words[3]};
}

} // namespace

Json parameterJson(const ParameterValue& value) {
    if (const auto* number = std::get_if<float>(&value))
        return floatJson(*number);
    if (const auto* number = std::get_if<std::int32_t>(&value))
        return *number;
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag;
    const auto& region = std::get<RegionOfInterestInternal>(value);
    return {{"x", region.x}, {"y", region.y}, {"width", region.width}, {"height", region.height}};
}

ParameterValue parameterFromJson(int number, const Json& json) {
    const auto kind = parameterKind(number);
    if (!kind)
        throw Failure(Failure::Usage, Format("there is no parameter %") % number);
    switch (*kind) {
    case ParameterKind::Float:
        if (!json.is_number() || !std::isfinite(json.get<float>()))
            refuseValue(number, json, "a number");
        return json.get<float>();
    case ParameterKind::Int:
        if (!json.is_number_integer() || json.get<double>() < std::numeric_limits<int>::min() ||
            json.get<double>() > std::numeric_limits<int>::max())
            refuseValue(number, json, "a whole number of 32 bits");
        return json.get<std::int32_t>();
    case ParameterKind::Bool:
        if (!json.is_boolean())
            refuseValue(number, json, "true or false");
        return json.get<bool>();
    case ParameterKind::Region:
        break;
    }
    return regionFrom(number, json);
}

ParameterValue parameterValue(int number, const std::string& text) {
    if (text == "on" || text == "off")
        return parameterFromJson(number, Json(text == "on"));
    Json json =
        text.find_first_of("[{") == std::string::npos ? Json::parse(text, nullptr, false) : Json(text);
    if (json.is_discarded() && text.find(',') != std::string::npos) {
        const Json list = Json::parse("[" + text + "]", nullptr, false);
        json = Json::object();
        for (std::size_t index = 0; index < list.size() && list.size() == regionKeys.size(); ++index)
            json[regionKeys[index]] = list[index];
    }
    if (json.is_discarded())
        json = text;
    return parameterFromJson(number, json);
}

const char* accessName(const Parameter& parameter) noexcept {
    if (parameter.isReadable)
        return parameter.isWritable ? "read-write" : "read";
    return parameter.isWritable ? "write" : "-";
}

std::string toJson(const ParameterValue& value) { return printed(parameterJson(value)); }

std::string toJson(const Parameter& parameter) {
    return printed({{"parameter", parameter.number},
                    {"name", orNull(parameter.name)},
                    {"supported", parameter.isSupported},
                    {"kind", kindName(parameter.kind)},
                    {"unit", unitName(parameter.unit)},
                    {"access", accessName(parameter)},
                    {"value", parameter.value ? parameterJson(*parameter.value) : Json()},
                    {"range", rangesJson(parameter)}});
}

} // namespace Zentara::Host
