#include "tools/zentara/cameras/parameter_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include <zentara/utils/format.h>

#include "host/float_text.h"
#include "host/json_fields.h"
#include "tools/zentara/exit_code.h"

namespace Zentara::Tool {

using Utils::Format;
using Utils::makeRefcounted;

namespace {

[[noreturn]] void refuse(ParameterType parameter, const std::string& what, const char* wanted) {
    throw Failure(Failure::Usage,
                  Format("parameter % takes %, not %") % static_cast<int>(parameter) % wanted % what);
}

constexpr std::array<const char*, 4> regionFields{"x", "y", "width", "height"};

std::array<std::uint32_t, 4> wordsOf(const RegionOfInterestInternal& region) {
    return {region.x, region.y, region.width, region.height};
}

ParameterValue regionOf(const std::array<std::uint32_t, 4>& words) {
    return makeRefcounted<IO::setRegionOfInterestRequest>(
        RegionOfInterestInternal{words[0], words[1], words[2], words[3]});
}

Json regionJson(const RegionOfInterestInternal& region) {
    Json json = Json::object();
    const auto words = wordsOf(region);
    for (std::size_t index = 0; index < words.size(); ++index)
        json[regionFields[index]] = words[index];
    return json;
}

template<typename T>
Json numberJson(T value) {
    if constexpr (std::is_floating_point_v<T>)
        return floatJson(value);
    else
        return value;
}

template<typename T>
bool describe(const ParameterRangeBaseInternal* range, Json& json) {
    if (const auto* interval = dynamic_cast<const ParameterRangeInternal<T>*>(range)) {
        json = {{"minimum", numberJson(interval->getMin())},
                {"maximum", numberJson(interval->getMax())},
                {"step", numberJson(interval->getStep())}};
        return true;
    }
    if (const auto* choices = dynamic_cast<const ParameterDiscreteSetInternal<T>*>(range)) {
        json = {{"values", Json::array()}};
        for (const T value : choices->getSupportedValues())
            json["values"].push_back(numberJson(value));
        return true;
    }
    return false;
}

std::string rangeText(const Json& json) {
    if (json.contains("values")) {
        std::string text;
        for (const Json& value : json["values"])
            text += (text.empty() ? "" : ", ") + value.dump();
        return text;
    }
    return Format("% to %, step %") % json["minimum"].dump() % json["maximum"].dump() % json["step"].dump();
}

/// By what is told of the range: the least and the greatest value, or the values.
bool liesWithin(const Json& told, double value) {
    const auto tolerance = [](double bound) { return 1e-6 * std::max(1.0, std::abs(bound)); };
    const auto isOpen = [&told](const char* bound) {
        return !told.contains(bound) || !told[bound].is_number();
    };
    if (told.contains("values")) {
        const Json& values = told["values"];
        return std::any_of(values.begin(), values.end(), [&](const Json& one) {
            return one.is_number() && std::abs(one.get<double>() - value) <= tolerance(one.get<double>());
        });
    }
    // A bound that is no number, such as nan, is none: it is for the camera to refuse values then.
    const double least = isOpen("minimum") ? value : told["minimum"].get<double>();
    const double most = isOpen("maximum") ? value : told["maximum"].get<double>();
    return value >= least - tolerance(least) && value <= most + tolerance(most);
}

template<typename Request>
const Request* as(const ParameterValue& value) {
    return dynamic_cast<const Request*>(value.get());
}

} // namespace

bool accepts(const ParameterRangeBaseInternal& range, const ParameterValue& value) {
    const Json told = toJson(&range);
    const Json number = toJson(value);
    if (!number.is_object())
        return !number.is_number() || liesWithin(told, number.get<double>());
    return std::all_of(regionFields.begin(), regionFields.end(), [&](const char* field) {
        return !told.contains(field) || liesWithin(told[field], number[field].get<double>());
    });
}

ParameterValue emptyValue(ParameterType parameter) {
    switch (IO::ParameterInterpreter::getParameterValueType(parameter)) {
    case ParameterValueType_FLOAT:
        return makeRefcounted<IO::setFloatParameterRequest>(parameter, 0.0F);
    case ParameterValueType_INT:
        return makeRefcounted<IO::setIntParameterRequest>(parameter, 0);
    case ParameterValueType_BOOL:
        return makeRefcounted<IO::setBoolParameterRequest>(parameter, false);
    case ParameterValueType_REGION_OF_INTEREST:
        return makeRefcounted<IO::setRegionOfInterestRequest>();
    default:
        return {};
    }
}

Json toJson(const ParameterValue& value) {
    if (const auto* number = as<IO::setFloatParameterRequest>(value))
        return floatJson(number->getValue());
    if (const auto* number = as<IO::setIntParameterRequest>(value))
        return number->getValue();
    if (const auto* flag = as<IO::setBoolParameterRequest>(value))
        return flag->getValue();
    if (const auto* region = as<IO::setRegionOfInterestRequest>(value))
        return regionJson(region->getRegion());
    return {};
}

std::string toText(const ParameterValue& value) {
    const Json json = toJson(value);
    if (!json.is_object())
        return json.dump();
    std::string text;
    for (const char* field : regionFields)
        text += (text.empty() ? "" : ",") + json[field].dump();
    return text;
}

ParameterValue valueFromJson(ParameterType parameter, const Json& json, const std::string& source) {
    const std::string found = shortText(json) + " in " + source;
    switch (IO::ParameterInterpreter::getParameterValueType(parameter)) {
    case ParameterValueType_FLOAT:
        if (!json.is_number() || !std::isfinite(json.get<float>()))
            refuse(parameter, found, "a number");
        return makeRefcounted<IO::setFloatParameterRequest>(parameter, json.get<float>());
    case ParameterValueType_INT:
        if (!json.is_number_integer() || json.get<double>() < std::numeric_limits<int>::min() ||
            json.get<double>() > std::numeric_limits<int>::max())
            refuse(parameter, found, "a whole number of 32 bits");
        return makeRefcounted<IO::setIntParameterRequest>(parameter, json.get<int>());
    case ParameterValueType_BOOL:
        if (!json.is_boolean())
            refuse(parameter, found, "true or false");
        return makeRefcounted<IO::setBoolParameterRequest>(parameter, json.get<bool>());
    case ParameterValueType_REGION_OF_INTEREST: {
        std::array<std::uint32_t, 4> words{};
        for (std::size_t index = 0; index < words.size(); ++index) {
            const Json word = json.is_object() ? json.value(regionFields[index], Json()) : Json();
            if (!word.is_number_unsigned() || word.get<std::uint64_t>() > 0xFFFF ||
                json.size() != words.size())
                refuse(parameter, found, "x, y, width and height, 0 to 65535 each");
            words[index] = word.get<std::uint32_t>();
        }
        return regionOf(words);
    }
    default:
        throw Failure(Failure::Usage, Format("there is no parameter %") % static_cast<int>(parameter));
    }
}

ParameterValue valueFromText(ParameterType parameter, const std::string& text) {
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

Json toJson(const ParameterRangeBaseInternal* range) {
    Json json;
    if (describe<float>(range, json) || describe<int>(range, json))
        return json;
    if (const auto* region = dynamic_cast<const RegionOfInterestRangeInternal*>(range)) {
        const std::array<const RegionOfInterestRangeInternal::Range*, 4> parts{
            region->getXRange(), region->getYRange(), region->getWidthRange(), region->getHeightRange()};
        for (std::size_t index = 0; index < parts.size(); ++index)
            describe<int>(parts[index], json[regionFields[index]]);
    }
    return json;
}

std::string toText(const ParameterRangeBaseInternal* range) {
    const Json json = toJson(range);
    if (json.is_null())
        return "-";
    if (!json.contains("x"))
        return rangeText(json);
    std::string text;
    for (const char* field : regionFields)
        text += (text.empty() ? "" : "; ") + std::string(field) + " " + rangeText(json[field]);
    return text;
}

const char* kindName(ParameterType parameter) noexcept {
    switch (IO::ParameterInterpreter::getParameterValueType(parameter)) {
    case ParameterValueType_FLOAT:
        return "float";
    case ParameterValueType_INT:
        return "int";
    case ParameterValueType_BOOL:
        return "bool";
    case ParameterValueType_REGION_OF_INTEREST:
        return "region";
    default:
        return "-";
    }
}

const char* unitName(UnitType unit) noexcept {
    constexpr std::array<const char*, 14> names{"-",   "%",    "mm",  "m",  "us", "ms",    "Hz",
                                                "MHz", "degC", "deg", "dB", "mA", "pixel", "frames/s"};
    return unit >= 0 && static_cast<std::size_t>(unit) < names.size() ? names[static_cast<std::size_t>(unit)]
                                                                      : "?";
}

const char* accessName(AccessMode mode) noexcept {
    constexpr std::array<const char*, 4> names{"-", "write", "read", "read-write"};
    return mode >= 0 && static_cast<std::size_t>(mode) < names.size() ? names[static_cast<std::size_t>(mode)]
                                                                      : "?";
}

} // namespace Zentara::Tool
