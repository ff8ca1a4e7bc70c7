#pragma once

#include <string>
#include <vector>

#include "host/cameras/camera_bus.h"

namespace Zentara::Host {

/// The cameras whose serial number or path is that name or, if none is, in whose name, product name or controller it
/// occurs, whatever the case.
/// \param names empty for the first camera
/// \throws Failure (NoDevice), when there is none, or a name fits none; (Usage) for an empty name
[[nodiscard]] std::vector<CameraEntry> chooseCameras(const std::vector<CameraEntry>& cameras,
                                                     const std::vector<std::string>& names);

/// The one camera of that name; the first one if the name is empty.
/// \throws Failure as above, and (Usage) when the name fits several
[[nodiscard]] CameraEntry chooseCamera(const std::vector<CameraEntry>& cameras, const std::string& name);

/// The same for what changes a camera: of several one has to be named.
/// \throws Failure as above, and (Usage) with the list of them when none is
[[nodiscard]] CameraEntry chooseCameraToWrite(const std::vector<CameraEntry>& cameras,
                                              const std::string& name);

} // namespace Zentara::Host
