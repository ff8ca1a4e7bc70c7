#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <zentara/host/export.h>
#include <zentara/region_of_interest_internal.h>
#include <zentara/unit_type.h>

namespace Zentara::Host {

/// What a parameter's value is; its number fixes that.
enum class ParameterKind { Float, Int, Bool, Region };

/// "float", "int", "bool" or "region".
[[nodiscard]] ZENTARA_HOST_API const char* kindName(ParameterKind kind) noexcept;

/// The kind of the parameter of that number; nothing for a number that no parameter has. They are numbered from 0.
[[nodiscard]] ZENTARA_HOST_API std::optional<ParameterKind> parameterKind(int number) noexcept;

/// A value, in the parameter's own unit; a region in pixels of the sensor. The alternatives stand in the order of
/// `ParameterKind`.
using ParameterValue = std::variant<float, std::int32_t, bool, RegionOfInterestInternal>;

/// For people and messages: "12.5", "3", "true", of a region "0,0,320,240".
[[nodiscard]] ZENTARA_HOST_API std::string valueText(const ParameterValue& value);

/// The value that a person means who writes "12.5", "3", "on", "off" or, for a region, "X,Y,WIDTH,HEIGHT".
/// \throws Failure (Usage) when the parameter of that number takes no such value, or there is none
[[nodiscard]] ZENTARA_HOST_API ParameterValue parameterValue(int number, const std::string& text);

/// As JSON: a number, true or false, of a region an object with x, y, width and height. What JSON has no number for is a
/// text.
[[nodiscard]] ZENTARA_HOST_API std::string toJson(const ParameterValue& value);

/// Values by the parameters' numbers.
using ParameterValues = std::map<int, ParameterValue>;

/// "mm", "us", "MHz"; "-" for none, "?" for one that is not known.
[[nodiscard]] ZENTARA_HOST_API const char* unitName(UnitType unit) noexcept;

/// Which numbers a parameter takes, in its unit: from least to greatest, or just some. A plain value. Separate.
struct ZENTARA_HOST_API NumberRange {
    double least = 0;           ///< unless `isList`
    double greatest = 0;        ///< the same
    double step = 0;            ///< 0: any number between
    std::vector<double> values; ///< just these, where `isList`
    bool isList = false;

    /// Whether a number is inside; it may miss a bound by what the conversion to text costs, a millionth. The step does
    /// not count: cameras round. A bound that is no number is none.
    [[nodiscard]] bool contains(double number) const noexcept;

    friend bool operator==(const NumberRange&, const NumberRange&) = default;
};

/// What there is to say of one parameter of a camera. A plain value. Separate.
struct ZENTARA_HOST_API Parameter {
    int number = 0;
    std::string name;                          ///< what the description calls it; may be empty
    ParameterKind kind = ParameterKind::Float; ///< which alternative its value is
    bool isSupported = false; ///< false: the camera has none of that number, and the rest says nothing
    bool isReadable = false;
    bool isWritable = false;
    UnitType unit = UnitType_NONE;       ///< of value and ranges
    std::optional<ParameterValue> value; ///< none where it cannot be read
    /// Of a number one; of a region four, for x, y, width and height. Empty: the camera does not say, or it is a switch.
    std::vector<NumberRange> ranges;

    /// Whether the camera is known to take that value.
    [[nodiscard]] bool accepts(const ParameterValue& wanted) const;
};

/// "read-write", "read" or "write"; "-" for neither.
[[nodiscard]] ZENTARA_HOST_API const char* accessName(const Parameter& parameter) noexcept;

/// All there is to say of it, as a JSON object: parameter (its number), name, supported, kind, unit, access, value and
/// range; null where there is none.
[[nodiscard]] ZENTARA_HOST_API std::string toJson(const Parameter& parameter);

/// What it takes, for people: "0 to 100, step 1", "1, 2, 4", of a region one for each of its numbers; "-" where it does
/// not say.
[[nodiscard]] ZENTARA_HOST_API std::string rangesText(const Parameter& parameter);

} // namespace Zentara::Host
