#pragma once

#include <string>
#include <vector>

#include <zentara/host/stream_info.h>

#include "host/cameras/camera_bus.h"

namespace Zentara::Host {

/// The cameras whose serial number or path is that name or, if none is, in whose name, product name or controller it
/// occurs, whatever the case.
/// \param names empty for the first camera
/// \param where what the cameras are, for messages
/// \throws Failure (NoDevice), when there is none, or a name fits none; (Usage) for an empty name
[[nodiscard]] std::vector<CameraInfo> chooseCameras(const std::vector<CameraInfo>& cameras,
                                                    const std::vector<std::string>& names,
                                                    const std::string& where = "plugged in");

/// The one camera of that name; the first one if the name is empty.
/// \throws Failure as above, and (Usage) when the name fits several
[[nodiscard]] CameraInfo chooseCamera(const std::vector<CameraInfo>& cameras, const std::string& name,
                                      const std::string& where = "plugged in");

// The same among entries.
[[nodiscard]] std::vector<CameraEntry> chooseCameras(const std::vector<CameraEntry>& cameras,
                                                     const std::vector<std::string>& names);
[[nodiscard]] CameraEntry chooseCamera(const std::vector<CameraEntry>& cameras, const std::string& name);

/// For what changes a camera: of several one has to be named.
/// \throws Failure as above, and (Usage) with the list of them when none is
[[nodiscard]] CameraEntry chooseCameraToWrite(const std::vector<CameraEntry>& cameras,
                                              const std::string& name);

} // namespace Zentara::Host
