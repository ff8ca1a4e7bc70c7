#include <zentara/host/parameter.h>

#include <algorithm>
#include <array>
#include <cmath>

#include <zentara/io/parameter_interpreter.h>
#include <zentara/utils/format.h>

#include "host/float_text.h"
#include "host/json.h"

namespace Zentara::Host {

const char* kindName(ParameterKind kind) noexcept {
    switch (kind) {
    case ParameterKind::Float:
        return "float";
    case ParameterKind::Int:
        return "int";
    case ParameterKind::Bool:
        return "bool";
    case ParameterKind::Region:
        return "region";
    }
    return "?";
}

std::optional<ParameterKind> parameterKind(int number) noexcept {
    switch (IO::ParameterInterpreter::getParameterValueType(static_cast<ParameterType>(number))) {
    case ParameterValueType_FLOAT:
        return ParameterKind::Float;
    case ParameterValueType_INT:
        return ParameterKind::Int;
    case ParameterValueType_BOOL:
        return ParameterKind::Bool;
    case ParameterValueType_REGION_OF_INTEREST:
        return ParameterKind::Region;
    default:
        return {};
    }
}

std::string valueText(const ParameterValue& value) {
    if (const auto* real = std::get_if<float>(&value))
        return floatText(*real);
    if (const auto* whole = std::get_if<std::int32_t>(&value))
        return std::to_string(*whole);
    if (const auto* flag = std::get_if<bool>(&value))
        return *flag ? "true" : "false";
    const auto& region = std::get<RegionOfInterestInternal>(value);
    return Utils::Format("%,%,%,%") % region.x % region.y % region.width % region.height;
}

const char* unitName(UnitType unit) noexcept {
    // In the order of `UnitType`.
    constexpr std::array<const char*, 14> names{"-",   "%",    "mm",  "m",  "us", "ms",    "Hz",
                                                "MHz", "degC", "deg", "dB", "mA", "pixel", "frames/s"};
    return unit >= 0 && static_cast<std::size_t>(unit) < names.size() ? names[static_cast<std::size_t>(unit)]
                                                                      : "?";
}

namespace {

constexpr std::array<const char*, 4> regionFields{"x", "y", "width", "height"};

/// As the camera has it: the shortest decimal of a float.
std::string numberText(double number, ParameterKind kind) {
    return kind == ParameterKind::Float ? floatJson(static_cast<float>(number)).dump()
                                        : std::to_string(static_cast<std::int64_t>(number));
}

std::string rangeText(const NumberRange& range, ParameterKind kind) {
    if (!range.isList)
        return Utils::Format("% to %, step %") % numberText(range.least, kind) %
               numberText(range.greatest, kind) % numberText(range.step, kind);
    std::string text;
    for (const double value : range.values)
        text += (text.empty() ? "" : ", ") + numberText(value, kind);
    return text;
}

} // namespace

std::string rangesText(const Parameter& parameter) {
    if (parameter.ranges.empty())
        return "-";
    if (parameter.kind != ParameterKind::Region)
        return rangeText(parameter.ranges.front(), parameter.kind);
    std::string text;
    for (std::size_t index = 0; index < std::min(parameter.ranges.size(), regionFields.size()); ++index)
        text += (text.empty() ? "" : "; ") + std::string(regionFields[index]) + " " +
                rangeText(parameter.ranges[index], parameter.kind);
    return text;
}

bool NumberRange::contains(double number) const noexcept {
    // The bounds were floats: a number that a person types differs from the nearest float in the seventh digit or later.
    const auto tolerance = [](double bound) { return 1e-6 * std::max(1.0, std::abs(bound)); };
    if (isList)
        return std::any_of(values.begin(), values.end(),
                           [&](double one) { return std::abs(one - number) <= tolerance(one); });
    // A bound that is infinite, or no number, binds nobody. The step is not looked at.
    const bool isAbove = !std::isfinite(least) || number >= least - tolerance(least);
    const bool isBelow = !std::isfinite(greatest) || number <= greatest + tolerance(greatest);
    return isAbove && isBelow;
}

bool Parameter::accepts(const ParameterValue& wanted) const {
    if (wanted.index() != static_cast<std::size_t>(kind)) // the alternatives stand in the order of the kinds
        return false;
    std::vector<double> numbers;
    if (const auto* real = std::get_if<float>(&wanted))
        numbers = {static_cast<double>(*real)};
    else if (const auto* whole = std::get_if<std::int32_t>(&wanted))
        numbers = {static_cast<double>(*whole)};
    else if (const auto* region = std::get_if<RegionOfInterestInternal>(&wanted))
        numbers = {static_cast<double>(region->x), static_cast<double>(region->y),
                   static_cast<double>(region->width), static_cast<double>(region->height)};
    for (std::size_t index = 0; index < std::min(numbers.size(), ranges.size()); ++index) {
        if (!ranges[index].contains(numbers[index]))
            return false;
    }
    return true;
}

} // namespace Zentara::Host
