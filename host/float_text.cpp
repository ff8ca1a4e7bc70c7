#include "host/float_text.h"

#include <array>
#include <charconv>
#include <cmath>

#include "host/json.h"

namespace Zentara::Host {

std::string floatText(float value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value);
    return {text.data(), end.ptr};
}

Json floatJson(float value) {
    // JSON has no number for what is not finite: it becomes a text.
    return std::isfinite(value) ? Json::parse(floatText(value)) : Json(floatText(value));
}

std::string decimalText(double value, int digits) {
    std::array<char, 400> text{}; // the greatest double has 309 digits before the point
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, digits).ptr;
    return {text.data(), end};
}

} // namespace Zentara::Host
