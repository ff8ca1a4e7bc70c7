#pragma once

#include <string>
#include <vector>

namespace Zentara::Host {

/// Round numbers that divide a range into about so many parts, the first not above `low`, the last not below
/// `high`.
[[nodiscard]] std::vector<double> plotTicks(double low, double high, int parts);

/// The fewest digits that a person needs: "0.5", "1200".
[[nodiscard]] std::string tickText(double value);

} // namespace Zentara::Host
