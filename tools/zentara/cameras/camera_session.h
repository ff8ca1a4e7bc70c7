#pragma once

#include <string>

#include <zentara/host/cameras.h>

#include "tools/zentara/json_output.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {

/// What the verbs that look at one camera have in common.
struct CameraOptions {
    std::string camera;
    bool json = false;
    bool writes = false; ///< then one of several cameras has to be named
};

/// --camera, which names one camera.
void addCameraName(CLI::App& command, std::string& name);

void addCameraOptions(CLI::App& command, CameraOptions& options);

/// How the tool asks for cameras: what it does not get ends the process when --patience is over, and not before.
[[nodiscard]] Cameras::Options patiently(Console& console);

/// Opens the camera of that name, or the first one; to write to it, of several one must be named. \throws Failure
[[nodiscard]] Camera openCamera(Cameras& cameras, const std::string& name, bool writes);

/// One camera. Bound.
class CameraSession final {
public:
    /// Finds the camera. \throws Failure
    CameraSession(const CameraOptions& wanted, Console& target);
    CameraSession(const CameraSession&) = delete;
    CameraSession& operator=(const CameraSession&) = delete;

    [[nodiscard]] const Camera& camera() const noexcept { return opened; }

    /// Says so on the console when a file is of another camera than this one. \param serialNumber empty: nobody knows
    void noteOtherCamera(const std::string& serialNumber) const;

    /// Ends the verb: prints the result as JSON, with the camera added, or the text.
    void finish(const Json& result, const std::string& text) const;

    /// Closes the camera, which may hang: the step that does is told. A failure is told and ends nothing.
    void close();

private:
    const CameraOptions options;
    Console& console;
    Cameras cameras;
    Camera opened;
};

/// Does a verb's work with one camera. \param work takes the CameraSession and returns the exit code
template<typename Work>
[[nodiscard]] ExitCode withCamera(const CameraOptions& options, Console& console, Work work) {
    CameraSession session(options, console);
    const ExitCode code = work(session);
    session.close();
    return code;
}

} // namespace Zentara::Tool
