#include "host/pictures/ticks.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace Zentara::Host {

std::vector<double> plotTicks(double low, double high, int parts) {
    // A single value gets a span of its own: a millionth of it, or of 1.
    const double span = std::max({high - low, std::abs(high) * 1e-6, 1e-6});
    const double rough = span / std::max(1, parts);
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    // The least of 1, 2, 5 and 10 times a power of ten that is not below the part wanted.
    double step = 10 * power;
    for (const double nice : {5.0, 2.0, 1.0}) {
        if (rough <= nice * power)
            step = nice * power;
    }
    std::vector<double> ticks;
    // A quotient that is whole but for rounding is whole.
    for (double at = std::floor(low / step + 1e-9); ticks.size() < 2 || ticks.back() < high - 1e-9 * step;
         ++at)
        ticks.push_back(at * step);
    return ticks;
}

std::string tickText(double value) {
    std::ostringstream text;
    // What rounding has left where a tick is at 0.
    text << (std::abs(value) < 1e-9 ? 0.0 : value);
    return text.str();
}

} // namespace Zentara::Host
