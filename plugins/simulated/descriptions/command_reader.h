#pragma once

#include <zentara/core/node_descriptor.h>

#include "plugins/simulated/descriptions/json_fields.h"

namespace Zentara::Simulated {

/// The requests that a list of commands stands for. \throws as JsonValue does
[[nodiscard]] Core::RequestList readCommands(const JsonValue& list);

} // namespace Zentara::Simulated
