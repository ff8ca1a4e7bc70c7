#pragma once

#include <string>

#include <zentara/host/camera.h>
#include <zentara/host/export.h>
#include <zentara/host/failure.h>

namespace Zentara::Host {

// What there is to say of a camera, as JSON: for a person who asks for help, a log, another program. Indented, with a line
// end; bytes that are no UTF-8 become the replacement character. Numbers that are none, such as nan, are texts.

/// Who it is: serial, name, path and controller; null where that is not known. Safe.
[[nodiscard]] ZENTARA_HOST_API std::string toJson(const CameraInfo& camera);
/// Kind, name, path and ids. Safe.
[[nodiscard]] ZENTARA_HOST_API std::string toJson(const NodeInfo& node);
/// Where what its depth node applies comes from: lens, extrinsics, corrections, accelerometer and serialNumber, each
/// "camera", "description" or "failure"; null where the node has none, or does not say. Safe.
[[nodiscard]] ZENTARA_HOST_API std::string toJson(const Sources& sources);

/// All that a camera and its description tell of it.
struct CameraReport {
    /// One object. What the camera does not answer has an object with `failure` or `notSupported` in its place.
    std::string json;
    /// That of the first question that failed; what it does not support is no failure.
    Failure::Code code = Failure::None;
};

/// Asks all questions, one after the other; a camera without a depth node has nothing but its description to tell, and a
/// recording what it holds, with `notSupported` for the rest.
/// \throws Failure when its description cannot be found, or it hangs
[[nodiscard]] ZENTARA_HOST_API CameraReport reportOf(const Camera& camera);

} // namespace Zentara::Host
