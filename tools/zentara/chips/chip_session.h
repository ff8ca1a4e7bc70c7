#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <zentara/host/cameras.h>
#include <zentara/io/camera_chip.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/rom_element.h>

#include "host/attempt.h"
#include "tools/zentara/cameras/camera_json.h"
#include "tools/zentara/json_output.h"
#include "tools/zentara/supervisor.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {

/// What the verbs that talk to a controller have in common.
struct ChipOptions {
    std::string camera;               ///< a name of a camera; with `direct` of a controller
    bool direct = false;              ///< a bare device
    std::string controller;           ///< overrules description and device; empty for neither
    std::vector<std::string> plugins; ///< which one; empty for the first
    bool trace = false;
    bool json = false;
    bool writes = false; ///< then one of several cameras has to be named
};

void addChipOptions(CLI::App& command, ChipOptions& options);

/// One camera of the bus, or a bare video device, open, with its chip bound. A failure of a step leaves it as a
/// Failure.
class ChipSession final {
public:
    /// Finds the camera, or makes the device, and opens it. \throws Failure
    ChipSession(const ChipOptions& wanted, Console& target);
    ~ChipSession();
    ChipSession(const ChipSession&) = delete;
    ChipSession& operator=(const ChipSession&) = delete;

    [[nodiscard]] IO::CameraChip& chip() noexcept { return *controller; }
    [[nodiscard]] IO::VideoDeviceProxy& device() { return camera->device(); }
    /// Which camera it is; of a bare device just its name.
    [[nodiscard]] const Host::CameraInfo& info() const noexcept { return camera->info(); }

    /// Where its description says that the storage lies; nothing where it does not say.
    [[nodiscard]] std::optional<ROMElement> storage() const;

    /// Who the camera is, as cameraJson() has it; of a bare device the plug-in's name and the controller.
    [[nodiscard]] Json identity() const;

    /// Ends the verb: prints the result as JSON, with the camera and the trace added, or the text.
    void finish(Json result, const std::string& text);

private:
    void note(const IO::ChipTransfer& transfer);
    void show(const IO::ChipTransfer& transfer);

    const ChipOptions options;
    Console& console;
    /// With JSON the trace waits for the end: it goes into the result, or to the errors when there is none.
    std::vector<IO::ChipTransfer> transfers;
    std::optional<Step> underWay; ///< the transfer that has begun
    Host::Cameras cameras;
    std::optional<Host::Camera> camera;
    IO::CameraChip* controller = nullptr; ///< the camera's
};

/// Does one step on a chip: what the chip has not is no failure of the camera, and told as it is.
template<typename Step>
void attemptOnChip(const std::string& what, Step step) {
    attempt(what, [&] {
        try {
            step();
        } catch (const Plugin::NotSupportedPluginException& lack) {
            throw Failure(Failure::Failed, lack.what());
        }
    });
}

/// "0x1D"
[[nodiscard]] std::string hexText(std::uint32_t value);

/// \throws Failure, a usage error that names the range, when a value is above `last`.
void checkRange(const char* what, std::uint32_t value, std::uint32_t last, const IO::CameraChip& chip);

} // namespace Zentara::Tool
