#pragma once

#include <vector>

#include <zentara/host/value_change.h>

#include "host/json.h"

namespace Zentara::Host {

/// Where two documents differ, value by value.
[[nodiscard]] std::vector<ValueChange> differencesBetween(const Json& before, const Json& after);

} // namespace Zentara::Host
