#pragma once

#include <zentara/node_type.h>

#include "plugins/descriptions/camera_description.h"
#include "plugins/descriptions/json_fields.h"

namespace Zentara::Cameras {

/// Reads the fields that a node and its further profiles have in common over what `profile` holds; those that are
/// absent stay. \throws as JsonValue does
void readProfileFields(JsonFields& fields, NodeType type, ProfileDescription& profile);

} // namespace Zentara::Cameras
