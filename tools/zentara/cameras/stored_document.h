#pragma once

#include <string>

#include <zentara/calibration_internal.h>

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

/// What a calibration file holds: whose calibration it is, and the calibration.
[[nodiscard]] Json calibrationDocument(const Host::CameraInfo& camera,
                                       const CalibrationInternal& calibration);

/// A calibration from a file, and the serial number of the camera that it is of; empty when it says none.
struct StoredCalibration {
    CalibrationInternal calibration;
    std::string serialNumber;
};

/// \throws Failure naming the field that is wrong
[[nodiscard]] StoredCalibration readCalibrationFile(const std::string& path);

/// The first of calibration-before.json, calibration-before-2.json and so on that is not there yet: no backup replaces
/// another.
[[nodiscard]] std::string freeBackupName();

} // namespace Zentara::Tool
