#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <zentara/camera_intrinsics.h>
#include <zentara/extrinsic_parameters_internal.h>
#include <zentara/hardware_ids.h>
#include <zentara/host/lens.h>
#include <zentara/host/mode.h>
#include <zentara/sensor_value_array.h>

namespace Zentara::Host {

/// One of a camera's nodes: what delivers one stream. A plain value. Separate.
struct NodeInfo {
    Kind kind = Kind::Depth; ///< what it delivers
    std::string name;        ///< for people
    std::string path;        ///< unique while it is plugged in
    HardwareIDs ids;         ///< vendor, product, revision and interface number

    friend bool operator==(const NodeInfo&, const NodeInfo&) = default;
};

/// Who a camera is. A plain value; a text that is not known is empty. Texts are as device and description give them:
/// who shows them makes them fit for showing. Separate.
struct CameraInfo {
    std::string serial;          ///< "SIM0570"
    std::string name;            ///< for people: the product's, else that of the camera's first node
    std::string vendor;          ///< as the description says
    std::string product;         ///< as the description says, else as the camera calls itself
    std::string path;            ///< where it is plugged in; unique while it is
    std::string controller;      ///< "OV0570", as the description says
    std::vector<Kind> kinds;     ///< what it streams, in its own order
    std::vector<NodeInfo> nodes; ///< what that comes from, in the enumerator's order

    /// What to call it in a message: "depth camera SIM0570".
    [[nodiscard]] ZENTARA_HOST_API std::string label() const;
    /// Its serial number, or the above where it tells none.
    [[nodiscard]] ZENTARA_HOST_API std::string shortLabel() const;
    /// The same of what delivers one of its streams: "ZS570 depth SIM0570"; as above where that has no name.
    [[nodiscard]] ZENTARA_HOST_API std::string label(Kind kind) const;
    /// What delivers that kind; null when the camera has none, or does not say. Ends with the value.
    [[nodiscard]] ZENTARA_HOST_API const NodeInfo* node(Kind kind) const noexcept;

    friend bool operator==(const CameraInfo&, const CameraInfo&) = default;
};

/// Where a number of a camera comes from.
enum class Source {
    None,        ///< nowhere: there is no such number
    Camera,      ///< the camera's own storage: measured on this one
    Description, ///< the description of its model; the camera holds nothing of its own
    Failure,     ///< the description, or nothing, because the camera could not be read
    Unknown,     ///< the node does not tell
};

/// "none", "camera", "description", "failure" or "unknown".
[[nodiscard]] ZENTARA_HOST_API const char* sourceName(Source source) noexcept;

/// Where the parts of a camera's calibration come from. A plain value. Separate.
struct Sources {
    Source lens = Source::None;          ///< the model of the depth pictures
    Source extrinsics = Source::None;    ///< from the depth to the colour camera
    Source corrections = Source::None;   ///< temperature and cyclic error
    Source accelerometer = Source::None; ///< its calibration
    Source serialNumber = Source::None;  ///< the one that the node tells
    std::string failure;                 ///< why the camera's storage could not be read; empty if it could

    friend bool operator==(const Sources&, const Sources&) = default;
};

/// How depth is to be corrected in one camera mode, as the camera or its description gives it. By which formulas,
/// `Frame::corrected()` says. A plain value. Separate.
struct ModeCorrections {
    /// What the temperature's parameters mean.
    enum class Temperature {
        None,
        Linear,     ///< millimetres a degree: a parameter for each sensor
        Polynomial, ///< coefficients of rising powers, from degrees to millimetres
        Other,      ///< one that this library does not know
    };

    Temperature temperature = Temperature::None;
    std::int32_t temperatureAlgorithm = 0;        ///< as the camera has it
    std::vector<float> temperatureParameters;     ///< in the unit that the kind says
    std::vector<std::int32_t> temperatureSensors; ///< whose readings they apply to, in the parameters' order
    SensorValueArray calibratedAt;       ///< what the sensors read when the camera was calibrated, degC
    std::int32_t cyclicAlgorithm = 0;    ///< a `CorrectionAlgorithm`; 0: none
    std::vector<float> cyclicParameters; ///< of algorithm 1: millimetres

    friend bool operator==(const ModeCorrections&, const ModeCorrections&) = default;
};

/// What is to be corrected in a depth camera's values, as values: it needs no camera any more. A plain value. Separate.
struct Corrections {
    std::array<ModeCorrections, 2> modes; ///< by the number of the camera mode
    /// Steps of the camera's phase in camera mode 0: of a stream's own mode where it is one of these, else of the first.
    std::int16_t phaseDelay = 0;
    std::int16_t phaseDelay2 = 0; ///< the same in camera mode 1

    friend bool operator==(const Corrections&, const Corrections&) = default;
};

/// What belongs to every frame of a stream. Recordings carry it, so that a recorded frame becomes a cloud without its
/// camera. A plain value. Separate.
struct StreamInfo {
    CameraInfo camera;            ///< whose it is
    Mode mode;                    ///< in which it streams
    float millimetresPerUnit = 1; ///< of a depth value as delivered
    /// Millimetres that a step of raw phase stands for, 65,536 of them to a turn; 0: not known, or none is measured.
    float millimetresPerPhaseStep = 0;
    DepthAlong depthAlong = DepthAlong::Axis; ///< what a depth value is the length of
    std::optional<CameraIntrinsics> lens;     ///< of this stream's pictures, at the mode's size
    /// From the depth camera to the colour camera, translation in millimetres; the same for both streams.
    std::optional<ExtrinsicParametersInternal> pose;
    Corrections corrections;                 ///< of depth; empty for other kinds
    Source lensSource = Source::None;        ///< of the lens, above
    Source poseSource = Source::None;        ///< of the pose
    Source correctionsSource = Source::None; ///< of the corrections
    /// Why the camera's storage could not be read, where a source is `Failure`.
    std::string sourceFailure;

    friend bool operator==(const StreamInfo&, const StreamInfo&) = default;
};

} // namespace Zentara::Host
