#pragma once

#include <string>
#include <vector>

#include "plugins/descriptions/camera_description.h"

namespace Zentara::Simulated {

/// The bus that the simulated cameras are plugged into: one of each camera that is described with the simulated
/// devices, or what the file says that the environment names. Reads the descriptions when it is made, and the file
/// whenever it is asked to look again. Separate.
class SimulatedBus {
public:
    /// Names the file (UTF-8). Unset or empty: one of each described camera.
    static constexpr const char* variable = "ZENTARA_SIMULATED_CAMERAS";

    /// A camera that is plugged in.
    struct Camera {
        const Cameras::CameraDescription* description; ///< the bus's
        std::string serialNumber;
        std::string settings; ///< statements of Settings, on top of those of the environment

        /// What its nodes have in common: "simulated:SERIAL".
        [[nodiscard]] std::string path() const { return pathPrefix + serialNumber; }
    };

    SimulatedBus();
    SimulatedBus(const SimulatedBus&) = delete;
    SimulatedBus& operator=(const SimulatedBus&) = delete;

    /// Reads the file again. With one that is wrong the cameras stay as they are.
    void refresh();

    [[nodiscard]] const std::vector<Camera>& cameras() const { return plugged; }

    /// The camera with this path, null if it is not plugged in.
    [[nodiscard]] const Camera* find(const std::string& path) const;

    /// What is wrong with the file; empty if nothing is.
    [[nodiscard]] const std::string& error() const { return trouble; }
    /// The file's path; empty when there is none.
    [[nodiscard]] const std::string& file() const { return filePath; }

    /// Whether a node's parent path is that of a camera on such a bus, plugged in or not.
    [[nodiscard]] static bool isCameraPath(const std::string& path);

private:
    static constexpr const char* pathPrefix = "simulated:";

    [[nodiscard]] std::vector<Camera> parse(const std::string& text) const;

    std::vector<Cameras::CameraDescription> descriptions;
    std::string filePath;
    std::string lastText;
    bool looked = false;
    std::vector<Camera> plugged;
    std::string trouble;
};

} // namespace Zentara::Simulated
