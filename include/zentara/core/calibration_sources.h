#pragma once

#include <cstdint>
#include <string>

namespace Zentara::Core {

/// A part of what a depth node knows of its camera.
enum class CalibrationPart : std::int32_t {
    Lens,          ///< the intrinsics of the depth image
    Extrinsics,    ///< from the depth to the colour sensor
    Corrections,   ///< temperature and cyclic error
    Accelerometer, ///< its calibration
    SerialNumber,
};

/// Where a node has a part from.
enum class CalibrationSource : std::int32_t {
    None,        ///< nowhere: the node has no such part
    Camera,      ///< the camera itself, measured on this one
    Description, ///< the description of its model; the camera holds nothing of its own
    Failure,     ///< the description, or nothing, because the camera could not be read
};

/// What a depth node may tell besides: a node that has it derives from this as well as from `DepthNodeInterface`, and a
/// host asks by `dynamic_cast`. A node without it leaves open where its numbers come from. Header only.
/// Used between `initialize` and `dispose`. Separate.
class CalibrationSources {
public:
    virtual ~CalibrationSources() = default;
    /// Where that part of the numbers that the node gives out comes from.
    [[nodiscard]] virtual CalibrationSource getCalibrationSource(CalibrationPart part) const = 0;
    /// Why the camera could not be read; empty if it could.
    [[nodiscard]] virtual std::string getCalibrationFailure() const = 0;
};

} // namespace Zentara::Core
