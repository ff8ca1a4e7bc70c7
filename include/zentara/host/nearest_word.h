#pragma once

#include <string>
#include <vector>

#include <zentara/host/export.h>

namespace Zentara::Host {

/// The word that somebody may have meant: of those that there are, the one that needs the fewest letters changed, put in
/// or left out; empty when none comes near. Safe.
[[nodiscard]] ZENTARA_HOST_API std::string nearestWord(const std::string& word,
                                                       const std::vector<std::string>& known);

} // namespace Zentara::Host
