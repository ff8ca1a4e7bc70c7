#pragma once

#include <string>
#include <vector>

namespace Zentara::Host {

/// The word that needs the fewest letters changed, put in or left out; empty when none comes near.
[[nodiscard]] std::string nearestWord(const std::string& word, const std::vector<std::string>& known);

} // namespace Zentara::Host
