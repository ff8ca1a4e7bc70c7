#pragma once

#include <string>

#include "host/json_fields.h"
#include "tools/zentara/cameras/camera_session.h"

namespace Zentara::Tool {

// What the files that hold something of a camera have in common: the schema, and whose it is.

/// \throws Failure when the document is of another schema
void checkDocument(JsonFields& fields);

/// The serial number of the camera that a document is of; empty when it does not say.
[[nodiscard]] std::string serialNumberIn(const Json& document);

/// Says so on the console when the document is of another camera.
void noteOtherCamera(const std::string& serialNumber, const CameraSession& session, Console& console);

} // namespace Zentara::Tool
