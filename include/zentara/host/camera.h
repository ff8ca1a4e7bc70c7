#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <zentara/acceleration_internal.h>
#include <zentara/calibration_internal.h>
#include <zentara/diagnostic_data.h>
#include <zentara/hardware_version_internal.h>
#include <zentara/host/export.h>
#include <zentara/host/extension_unit.h>
#include <zentara/host/lens.h>
#include <zentara/host/mode.h>
#include <zentara/host/parameter.h>
#include <zentara/host/plugin_name.h>
#include <zentara/host/stream.h>
#include <zentara/host/stream_info.h>
#include <zentara/io/camera_chip.h>
#include <zentara/rom_element.h>
#include <zentara/stereo_camera_parameters_array.h>

namespace Zentara::Core {
class AudioNodeInterface;
class ColorNodeInterface;
class DepthNodeInterface;
} // namespace Zentara::Core

namespace Zentara::Host {

class CameraImpl;
class Flash;

/// What serves one node of a camera, and the modes that its description gives it. A plain value. Separate.
struct NodeDescription {
    NodeInfo node;           ///< which one
    PluginName nodePlugin;   ///< makes frames of what the device delivers
    PluginName devicePlugin; ///< moves the bytes
    std::vector<Mode> modes; ///< the default one first; none where the device alone knows them
};

/// What the description says of a camera: of its model, the same for each of that kind. A plain value. Separate.
struct CameraDescription {
    std::vector<NodeDescription> nodes;  ///< in the order of CameraInfo::nodes
    HardwareVersionInternal hardware;    ///< its modules, all 0 where the description has none
    std::uint64_t deviceFlags = 0;       ///< of its first node's device
    std::int32_t deviceCapabilities = 0; ///< the same
};

/// The version of a camera's firmware. A plain value. Separate.
struct FirmwareVersion {
    int major = 0; ///< of the bridge, or of the time-of-flight controller where the bridge tells none
    int minor = 0; ///< of the same
};

/// What one temperature sensor reads. A plain value. Separate.
struct Temperature {
    std::int32_t sensor = -1; ///< the camera's number for it
    std::string name;         ///< what the description calls it; may be empty
    float celsius = 0;        ///< degrees, of this moment or a few seconds old
};

/// What an accelerometer reads. A plain value. Separate.
struct Acceleration {
    std::string name;                  ///< what the description calls it; may be empty
    std::uint32_t registerAddress = 0; ///< where it was read: of the time-of-flight controller
    AccelerationInternal value;        ///< in g
};

/// A camera that is plugged in, or a recording that plays as one. A handle: copies are the same camera, which is closed
/// when the last of them and of its streams has gone.
///
///     opened --the first call that needs a node--> in use --close(), or the last handle goes--> closed
///
/// What the camera must be asked is asked on a thread of its own, one call after the other, each of which takes at most
/// `Cameras::Options::limit`; then Failure (TimedOut) names the call that hangs, and so do later ones at once. Its
/// destruction takes at most 2 s, whatever the device does, and tells as a note what is left behind.
///
/// All operations throw Failure: NoDevice once the camera is not plugged in any more, Usage after close(),
/// Unsupported where the camera has not what is asked for, TimedOut, and Failed with what the device said. A recording
/// has info, modes, streams and what belongs to their frames: streamInfo(), lens(), lensModels(), corrections() and
/// sources(); everything else of it is Unsupported. Safe, but for chip().
class ZENTARA_HOST_API Camera {
public:
    explicit Camera(std::shared_ptr<CameraImpl> held) noexcept;
    Camera(const Camera&) noexcept;
    Camera(Camera&&) noexcept;
    Camera& operator=(const Camera&) noexcept;
    Camera& operator=(Camera&&) noexcept;
    ~Camera();

    /// As it was when the camera was opened; asks nothing.
    [[nodiscard]] const CameraInfo& info() const noexcept;

    /// The modes in which it streams that kind, the default one first; none for a kind that it has not.
    [[nodiscard]] std::vector<Mode> modes(Kind kind) const;

    /// The mode that is meant. \param word a mode's name, "320x240@60" or "320x240"; empty for the default
    /// \throws Failure (Usage) with the modes that there are, (NoDevice) when it does not stream that kind
    [[nodiscard]] Mode mode(Kind kind, const std::string& word = {}) const;

    /// What belongs to every frame of a stream in that mode.
    [[nodiscard]] StreamInfo streamInfo(Kind kind, const std::string& mode = {}) const;

    /// Opens a stream, and starts it unless the options say otherwise. It keeps the camera open, and ends with close().
    /// Of each kind one streams at a time: another one is refused as it starts, which leaves the first as it is.
    /// \throws Failure as mode() does; what the device says; (Usage) for a queue of another size than `StreamOptions`
    /// allows; (TimedOut) when the reader of a stream that was stopped hangs in the device
    [[nodiscard]] Stream stream(Kind kind, const StreamOptions& options = {}) const;

    /// The lens of a stream in that mode. \throws Failure (Failed) when the camera has no model of the mode's size
    [[nodiscard]] Lens lens(Kind kind = Kind::Depth, const std::string& mode = {}) const;

    /// What its description says. Asks the stores, and no device.
    [[nodiscard]] CameraDescription description() const;

    /// Where its description says that the storage of its calibration lies, in the memory that
    /// `chip().readConfiguration` reads; nothing where it does not say.
    [[nodiscard]] std::optional<ROMElement> storage() const;

    // What a depth camera knows of itself --------------------------------------------------------------------------

    [[nodiscard]] FirmwareVersion firmware() const; ///< \throws Unsupported where the camera tells none
    /// All lens models, and the transform from the depth to the colour camera in millimetres.
    [[nodiscard]] StereoCameraParametersArray lensModels() const;
    /// What its depth is to be corrected by; `Frame::corrected()` does it.
    [[nodiscard]] Corrections corrections() const;
    [[nodiscard]] AccelerationInternal accelerometerCalibration() const; ///< offsets, in g
    /// The one that the node has: of the bus, or of the camera's storage.
    [[nodiscard]] std::string storedSerialNumber() const;
    /// How often it overheated.
    [[nodiscard]] DiagnosticData diagnostics() const;
    /// The unambiguous range. \throws Unsupported where the camera tells none
    [[nodiscard]] float rangeMetres() const;
    /// Where lens models, extrinsics, corrections and so on come from.
    [[nodiscard]] Sources sources() const;

    // Parameters ---------------------------------------------------------------------------------------------------

    /// The numbers of those that the description lists; of all there can be when it lists none. Ascending.
    [[nodiscard]] std::vector<int> parameterNumbers() const;
    /// The number of the parameter that is called so: by number, or by the name that the description gives it.
    /// \throws Failure (Usage) with the nearest name when there is none
    [[nodiscard]] int parameterNumber(const std::string& word) const;
    /// All of parameterNumbers(), with their values.
    [[nodiscard]] std::vector<Parameter> parameters() const;
    /// One of them. \throws Failure (Failed) for a number that is not listed
    [[nodiscard]] Parameter parameter(int number) const;
    [[nodiscard]] Parameter parameter(const std::string& word) const {
        return parameter(parameterNumber(word));
    }
    /// Sets one. The camera may round: parameter() tells what it took.
    /// \throws Failure (Failed) for a value of another kind or out of range, and for what can only be read
    void setParameter(int number, const ParameterValue& value) const;
    void setParameter(const std::string& word, const ParameterValue& value) const {
        setParameter(parameterNumber(word), value);
    }
    /// Whether it is known that the camera will not take that value: throws then as setParameter() does, and sets nothing.
    void checkParameter(int number, const ParameterValue& value) const;
    /// All that can be read and written, at once.
    [[nodiscard]] ParameterValues parameterValues() const;
    /// Sets several at once. A camera that refuses some may have taken others: the cause says which.
    void setParameters(const ParameterValues& values) const;

    // Sensors ------------------------------------------------------------------------------------------------------

    /// Of all its sensors, in the camera's order; none for a camera that has none.
    [[nodiscard]] std::vector<Temperature> temperatures() const;
    /// \param registerAddress where to read it; where the description says unless given
    /// \return nothing for a camera without one
    [[nodiscard]] std::optional<Acceleration>
    accelerometer(std::optional<std::uint32_t> registerAddress = {}) const;

    // Calibration --------------------------------------------------------------------------------------------------

    /// The one that the parameter back-end holds: phase delays and temperature compensation.
    [[nodiscard]] CalibrationInternal readCalibration() const;
    /// Replaces it, and reads it back. \throws Failure (Verification) when another one comes back
    void writeCalibration(const CalibrationInternal& calibration) const;
    /// What the camera's frames are made with: of the first depth mode. It comes from the camera's storage, and need
    /// not be what the back-end holds. \return nothing for a camera without modes
    [[nodiscard]] std::optional<CalibrationInternal> appliedCalibration() const;
    /// Lets go of the parameter back-end: the next call that needs it connects anew, as another program would.
    void reconnectParameters() const;

    // The parts ----------------------------------------------------------------------------------------------------

    /// The camera's controller: registers, I2C, memories, modulation. Made at the first call, over a device of its own,
    /// beside the nodes. It is the camera's, and stays as long as that has a handle or a stream; after close(), and once
    /// the camera has come back from having been pulled out, it throws, and chip() gives another one. Its calls take at
    /// most 2 s each, and throw what the contract's classes throw; of a bare device they take as long as that one does.
    /// Separate.
    /// \param controller as which the first call takes it, "OV0570"; empty: the one that the description names, else the
    ///        one that is found out
    /// \throws Failure (NoDevice) when there is no controller that is known, (Usage) when no such one is
    [[nodiscard]] IO::CameraChip& chip(const std::string& controller = {}) const;

    /// The video device that chip() talks through; it stays as long as that.
    [[nodiscard]] IO::VideoDeviceProxy& device() const;

    /// The extension units that the camera's descriptors tell of, with what each control is and can; a camera need not
    /// have a controller that is known. Asks the device about each control.
    /// \throws Failure, Unsupported for a device that has no list of them
    [[nodiscard]] std::vector<ExtensionUnit> extensionUnits() const;

    /// Its flash, to be read; <zentara/host/flash.h>, where Flash::camera() opens it to write as well.
    [[nodiscard]] Flash flash() const;

    /// Who is told of the controller's transfers from now on, also of those with which it is found out; empty for nobody.
    /// Called on the thread that calls the chip, or on the camera's own.
    void watchTransfers(IO::ChipListener listener) const;

    /// Does work with the camera's depth node on the camera's own thread, for what only the contract's class offers.
    /// The work may hang and be left behind: it must own all that it touches.
    /// \param what is attempted, for messages
    void withDepthNode(const std::string& what, std::function<void(Core::DepthNodeInterface&)> work) const;

    /// Closes the camera for all of its handles; its streams end. Twice is harmless.
    /// \throws Failure when the device complains, or does not come back within the limit
    void close() const;

    /// What it is inside the library.
    [[nodiscard]] const std::shared_ptr<CameraImpl>& held() const noexcept { return impl; }

private:
    std::shared_ptr<CameraImpl> impl;
};

} // namespace Zentara::Host
