#pragma once

#include <string>

#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/json_fields.h"

namespace Zentara::Tool {

// What the files that hold something of a camera have in common: the schema, and whose it is.

/// \throws ToolFailure when the document is of another schema
void checkDocument(JsonFields& fields);

/// The serial number of the camera that a document is of; empty when it does not say.
[[nodiscard]] std::string serialNumberIn(const Json& document);

/// Says so on the console when the document is of another camera.
void noteOtherCamera(const std::string& serialNumber, const CameraSession& session, Console& console);

} // namespace Zentara::Tool
