#pragma once

#include <optional>
#include <string>
#include <vector>

#include <zentara/calibration_internal.h>
#include <zentara/host/export.h>
#include <zentara/host/output_file.h>
#include <zentara/host/parameter.h>
#include <zentara/host/stream_info.h>
#include <zentara/host/value_change.h>

namespace Zentara::Host {

// JSON documents that hold something of a camera: its calibration, or its parameters. Whoever reads one gets all of it or
// a Failure that names the file and the path of the first field that is missing, surplus, twice there, or of a wrong type
// or range: "'a.json': /calibration/phaseDelay: expected a whole number from -32768 to 32767, not 40000". A document has
// at most 16 MiB. Functions of values: safe.

/// The schema of the documents that are written; those from 1 to this one are read.
inline constexpr int documentSchema = 3;

/// A calibration, and whose it is. A plain value. Separate.
struct StoredCalibration {
    std::string serialNumber; ///< of the camera; empty when the document does not say
    /// As a camera would give it back: phase delays and temperature compensation.
    CalibrationInternal calibration;
};

/// \param path UTF-8; "-" for standard input
[[nodiscard]] ZENTARA_HOST_API StoredCalibration readCalibrationFile(const std::string& path);
/// The document. What of a calibration does not travel to and from a camera is left out: phase offset and drift
/// compensation.
[[nodiscard]] ZENTARA_HOST_API std::string calibrationDocument(const CameraInfo& camera,
                                                               const CalibrationInternal& calibration);
/// Its field `calibration` alone.
[[nodiscard]] ZENTARA_HOST_API std::string toJson(const CalibrationInternal& calibration);
/// The reverse. \param source of the text, for messages
[[nodiscard]] ZENTARA_HOST_API CalibrationInternal calibrationFromJson(const std::string& text,
                                                                       const std::string& source);
/// What one says other than the other, of what travels.
[[nodiscard]] ZENTARA_HOST_API std::vector<ValueChange> changesBetween(const CalibrationInternal& before,
                                                                       const CalibrationInternal& after);

/// Parameters, and whose they are. A plain value. Separate.
struct StoredParameters {
    std::string serialNumber; ///< of the camera; empty when the document does not say
    /// Each of its parameter's kind; whether the camera takes it is for the camera to say.
    ParameterValues values;
};

/// What a document that parameterDocument() made says. \param path UTF-8; "-" for standard input
[[nodiscard]] ZENTARA_HOST_API StoredParameters readParameterFile(const std::string& path);
/// The values as JSON, with the camera that they are of.
[[nodiscard]] ZENTARA_HOST_API std::string parameterDocument(const CameraInfo& camera,
                                                             const ParameterValues& values);

/// A parameter that has another value afterwards. A plain value. Separate.
struct ParameterChange {
    int number = 0;
    std::optional<ParameterValue> before; ///< nothing where none was known
    ParameterValue after;
};

/// Where `after` says other than `before`; what only `before` has is no change.
[[nodiscard]] ZENTARA_HOST_API std::vector<ParameterChange> changesBetween(const ParameterValues& before,
                                                                           const ParameterValues& after);

} // namespace Zentara::Host
