#pragma once

#include <cstdint>
#include <map>

namespace Zentara {

/// The settings of a colour camera, numbered by this SDK, in the units of the USB Video Class. Those without a unit
/// count in steps of the device's own, whose meaning is the camera's affair. Of a described camera, bit N of
/// `DescriptorStoreRO::getCameraControlsFlags` says whether setting N is offered.
enum CameraControlsEnum : std::int32_t {
    CameraControl_BRIGHTNESS = 0,
    CameraControl_CONTRAST = 1,
    CameraControl_HUE = 2, ///< hundredths of a degree
    CameraControl_SATURATION = 3,
    CameraControl_SHARPNESS = 4,
    CameraControl_GAMMA = 5,         ///< hundredths
    CameraControl_WHITE_BALANCE = 6, ///< kelvin
    CameraControl_BACKLIGHT_COMPENSATION = 7,
    CameraControl_GAIN = 8,
    CameraControl_EXPOSURE = 9, ///< units of 100 microseconds
    CameraControl_FOCUS = 10,   ///< millimetres
    CameraControl_ZOOM = 11,
    CameraControl_PAN = 12,  ///< seconds of arc
    CameraControl_TILT = 13, ///< seconds of arc
};

/// One setting. A copyable value. Separate.
struct CameraControlValue {
    std::int32_t value = 0; ///< in the setting's unit, within its range
    bool automatic = false; ///< the camera chooses; `value` is ignored

    friend bool operator==(const CameraControlValue&, const CameraControlValue&) = default;
};

/// What one setting accepts: `minimum`, `minimum + step` and so on up to `maximum`, in the setting's unit. A copyable
/// value. Separate.
struct CameraControlRange {
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    std::int32_t step = 0;           ///< as the device reports it
    CameraControlValue defaultValue; ///< what a node sets at first
    bool automaticSupported = false; ///< whether the camera may choose the value itself

    friend bool operator==(const CameraControlRange&, const CameraControlRange&) = default;
};

/// A set of settings; those that are absent are left as they are. A copyable value. Separate.
struct CameraControls {
    std::map<CameraControlsEnum, CameraControlValue> values;

    friend bool operator==(const CameraControls&, const CameraControls&) = default;
};

/// What a camera accepts; settings that it does not have are absent. A copyable value. Separate.
struct CameraControlRanges {
    std::map<CameraControlsEnum, CameraControlRange> ranges;

    friend bool operator==(const CameraControlRanges&, const CameraControlRanges&) = default;
};

} // namespace Zentara
