#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <zentara/host/cameras.h>
#include <zentara/io/camera_chip.h>
#include <zentara/utils/log_area.h>

#include "tools/zentara/json_output.h"
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

/// Is told of each transfer that is over. \param chip the controller's name; empty while that is not known
using Trace = std::function<void(const std::string& chip, const IO::ChipTransfer& transfer)>;

/// Shows each on standard error, if that is wanted.
[[nodiscard]] Trace shownTrace(bool isWanted, Console& console);

/// Opens one camera of the bus, or a bare video device, and reaches its controller. \param trace may be empty
/// \throws Failure
[[nodiscard]] Camera openChip(const ChipOptions& options, Cameras& cameras, Trace trace);

/// One camera of the bus, or a bare video device, open, with its chip bound.
class ChipSession final {
public:
    /// Finds the camera, or makes the device, and opens it. \throws Failure
    ChipSession(const ChipOptions& wanted, Console& target);
    ~ChipSession();
    ChipSession(const ChipSession&) = delete;
    ChipSession& operator=(const ChipSession&) = delete;

    [[nodiscard]] const Camera& camera() const { return *opened; }
    [[nodiscard]] IO::CameraChip& chip() const { return opened->chip(); }
    [[nodiscard]] IO::VideoDeviceProxy& device() const { return opened->device(); }

    /// A result as JSON, with the camera added.
    [[nodiscard]] Json about(const Json& result) const;

    /// Ends the verb: prints the result as JSON, with the camera and the trace added, or the text.
    void finish(const Json& result, const std::string& text);

private:
    const ChipOptions options;
    Console& console;
    /// With JSON the trace waits for the end: it goes into the result, or to the errors when there is none.
    std::vector<IO::ChipTransfer> transfers;
    Cameras cameras;
    std::optional<Camera> opened;
    std::optional<Utils::LogAreaScope> asked; ///< what is logged from then on is about the chip
};

/// "0x1D"
[[nodiscard]] std::string hexText(std::uint32_t value);

/// \throws Failure, a usage error that names the range, when a value is above `last`.
void checkRange(const char* what, std::uint32_t value, std::uint32_t last, const IO::CameraChip& chip);

} // namespace Zentara::Tool
