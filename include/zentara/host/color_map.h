#pragma once

#include <cstdint>
#include <span>
#include <string>

#include <zentara/host/color.h>
#include <zentara/host/export.h>
#include <zentara/host/picture.h>

namespace Zentara::Host {

/// A range of values, in the unit of whoever uses it; `low` is not above `high`, and both belong to it. A plain value.
/// Separate.
struct ValueRange {
    double low = 0;  ///< the least value
    double high = 0; ///< the greatest

    friend bool operator==(const ValueRange&, const ValueRange&) = default;
};

/// From values to colours: red for the low end, over yellow and green, to blue for the high one; values beyond are as
/// the end is. What is no value (NaN; 0 in a picture of depths) has a colour of its own that no value has: black. A
/// plain value. Separate.
class ZENTARA_HOST_API ColorMap {
public:
    /// A range that is fixed, so that pictures can be compared.
    /// \param unitOfValues for the scale: "mm"
    /// \param whatIsNothing what black stands for, for the legend: "no depth"; empty when there is no black
    /// \throws Failure (Usage) when an end is not finite, or low above high
    ColorMap(ValueRange range, std::string unitOfValues, std::string whatIsNothing);

    /// The range of what there is: the values of a picture, without the zeros.
    /// \param trim share of the values left out at either end, 0 to 0.5, so that single wild pixels do not count
    /// \return 0 to 0 where there is no value
    [[nodiscard]] static ValueRange rangeOf(std::span<const std::uint16_t> values, double trim = 0.005);

    /// For depths as a camera delivers them, in the range of those that are there. \param unit "mm"
    [[nodiscard]] static ColorMap ofDepths(std::span<const std::uint16_t> depths,
                                           const std::string& unit = "mm");

    [[nodiscard]] const ValueRange& range() const noexcept { return ends; }
    [[nodiscard]] const std::string& unit() const noexcept { return measure; }
    /// What black stands for; empty when there is no black.
    [[nodiscard]] const std::string& nothing() const noexcept { return absence; }

    /// The colour of one value; black for NaN.
    [[nodiscard]] Color operator()(double value) const noexcept;

    /// A picture in these colours; 0 is no value. \param values width x height of them, row by row from the top
    /// \throws Failure (Usage) when there are not so many
    [[nodiscard]] Picture paint(std::span<const std::uint16_t> values, std::uint32_t width,
                                std::uint32_t height) const;

    /// A picture in these colours with what its reader needs to know: a title above it, the scale with numbers and unit
    /// beside it, and below it what black stands for. \param title letters beyond ASCII become '?'
    [[nodiscard]] Picture explain(const Picture& picture, const std::string& title) const;

private:
    ValueRange ends;     ///< finite, low not above high
    std::string measure; ///< the unit, for the scale
    std::string absence; ///< what black stands for; empty when there is no black
};

} // namespace Zentara::Host
