#pragma once

#include <zentara/core/node_descriptor.h>

#include "plugins/descriptions/json_fields.h"

namespace Zentara::Cameras {

/// The requests that a list of commands stands for. \throws as JsonValue does
[[nodiscard]] Core::RequestList readCommands(const JsonValue& list);

} // namespace Zentara::Cameras
