#include "plugins/v4l2/camera_settings.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <linux/videodev2.h>
#include <optional>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

namespace Zentara::V4l2 {

using Utils::Format;

namespace {

/// A setting under the kernel's numbers.
struct Row {
    CameraControlsEnum control;
    std::uint32_t value;
    std::uint32_t automatic; ///< switches it to automatic; 0: there is no such thing
};

constexpr std::array<Row, 14> rows{{
    {CameraControl_BRIGHTNESS, V4L2_CID_BRIGHTNESS, 0},
    {CameraControl_CONTRAST, V4L2_CID_CONTRAST, 0},
    {CameraControl_HUE, V4L2_CID_HUE, V4L2_CID_HUE_AUTO},
    {CameraControl_SATURATION, V4L2_CID_SATURATION, 0},
    {CameraControl_SHARPNESS, V4L2_CID_SHARPNESS, 0},
    {CameraControl_GAMMA, V4L2_CID_GAMMA, 0},
    {CameraControl_WHITE_BALANCE, V4L2_CID_WHITE_BALANCE_TEMPERATURE, V4L2_CID_AUTO_WHITE_BALANCE},
    {CameraControl_BACKLIGHT_COMPENSATION, V4L2_CID_BACKLIGHT_COMPENSATION, 0},
    {CameraControl_GAIN, V4L2_CID_GAIN, V4L2_CID_AUTOGAIN},
    {CameraControl_EXPOSURE, V4L2_CID_EXPOSURE_ABSOLUTE, V4L2_CID_EXPOSURE_AUTO},
    {CameraControl_FOCUS, V4L2_CID_FOCUS_ABSOLUTE, V4L2_CID_FOCUS_AUTO},
    {CameraControl_ZOOM, V4L2_CID_ZOOM_ABSOLUTE, 0},
    {CameraControl_PAN, V4L2_CID_PAN_ABSOLUTE, 0},
    {CameraControl_TILT, V4L2_CID_TILT_ABSOLUTE, 0},
}};

/// Nothing for a setting that the driver doesn't have, or has switched off.
std::optional<v4l2_queryctrl> query(const DeviceFile& file, std::uint32_t id) {
    v4l2_queryctrl told{};
    told.id = id;
    const int result = id == 0 ? -EINVAL : file.control(VIDIOC_QUERYCTRL, told);
    if (result == -EINVAL || result == -ENOTTY ||
        (result >= 0 && (told.flags & V4L2_CTRL_FLAG_DISABLED) != 0))
        return std::nullopt;
    if (result < 0)
        file.fail("ask for a setting of the camera", -result);
    return told;
}

/// What the switch reads when the camera chooses. Exposure has a menu, of which a camera may have a part.
std::int32_t automaticValue(const DeviceFile& file, const v4l2_queryctrl& told) {
    if (told.id != V4L2_CID_EXPOSURE_AUTO)
        return 1;
    for (const std::int32_t entry : {V4L2_EXPOSURE_AUTO, V4L2_EXPOSURE_APERTURE_PRIORITY}) {
        v4l2_querymenu menu{};
        menu.id = told.id;
        menu.index = static_cast<std::uint32_t>(entry);
        if (entry >= told.minimum && entry <= told.maximum && file.control(VIDIOC_QUERYMENU, menu) >= 0)
            return entry;
    }
    return told.default_value;
}

std::int32_t manualValue(std::uint32_t id) { return id == V4L2_CID_EXPOSURE_AUTO ? V4L2_EXPOSURE_MANUAL : 0; }

bool isAutomatic(std::uint32_t id, std::int32_t value) {
    return id == V4L2_CID_EXPOSURE_AUTO
               ? value == V4L2_EXPOSURE_AUTO || value == V4L2_EXPOSURE_APERTURE_PRIORITY
               : value != 0;
}

/// Writes one that isn't so already.
void write(const DeviceFile& file, std::uint32_t id, std::int32_t value, const std::string& what) {
    v4l2_control control{id, 0};
    if (file.control(VIDIOC_G_CTRL, control) >= 0 && control.value == value)
        return;
    control = {id, value};
    file.require(VIDIOC_S_CTRL, control, what.c_str());
}

const Row& rowOf(CameraControlsEnum control) {
    const auto found =
        std::find_if(rows.begin(), rows.end(), [=](const Row& row) { return row.control == control; });
    if (found == rows.end())
        throw Plugin::ArgumentPluginException(Format("there is no setting % of cameras") %
                                              static_cast<int>(control));
    return *found;
}

void writeRow(const DeviceFile& file, const Row& row, const v4l2_queryctrl& told,
              const CameraControlValue& value) {
    const std::string what = Format("set '%' of the camera") % reinterpret_cast<const char*>(told.name);
    const auto mode = query(file, row.automatic);
    if (value.automatic) {
        if (!mode)
            throw Plugin::ArgumentPluginException(Format("%: cannot %: it has no automatic") % file.path() %
                                                  what);
        write(file, row.automatic, automaticValue(file, *mode), what);
        return;
    }
    if (value.value < told.minimum || value.value > told.maximum)
        throw Plugin::ArgumentPluginException(Format("%: cannot % to %: it takes % to %") % file.path() %
                                              what % value.value % told.minimum % told.maximum);
    if (mode)
        write(file, row.automatic, manualValue(row.automatic), what);
    write(file, row.value, value.value, what);
}

} // namespace

CameraControlRanges readRanges(const DeviceFile& file) {
    CameraControlRanges ranges;
    for (const Row& row : rows) {
        const auto told = query(file, row.value);
        if (!told)
            continue;
        const auto mode = query(file, row.automatic);
        CameraControlRange range;
        range.minimum = told->minimum;
        range.maximum = told->maximum;
        range.step = told->step;
        range.automaticSupported = mode.has_value();
        range.defaultValue = {told->default_value,
                              mode.has_value() && isAutomatic(row.automatic, mode->default_value)};
        ranges.ranges.emplace(row.control, range);
    }
    return ranges;
}

void writeSetting(const DeviceFile& file, CameraControlsEnum control, const CameraControlValue& value) {
    const Row& row = rowOf(control);
    const auto told = query(file, row.value);
    if (!told)
        throw Plugin::ArgumentPluginException(Format("%: the camera has no control %") % file.path() %
                                              static_cast<int>(control));
    writeRow(file, row, *told, value);
}

void writeSettings(const DeviceFile& file, const CameraControls& controls) {
    for (const auto& [control, value] : controls.values) {
        const Row& row = rowOf(control);
        if (const auto told = query(file, row.value))
            writeRow(file, row, *told, value);
    }
}

PowerLineFrequency usualPowerLine(const DeviceFile& file) {
    const auto told = query(file, V4L2_CID_POWER_LINE_FREQUENCY);
    const bool known = told && told->default_value >= PowerLineFrequency_DISABLED &&
                       told->default_value <= PowerLineFrequency_AUTO;
    return known ? static_cast<PowerLineFrequency>(told->default_value) : PowerLineFrequency_DISABLED;
}

void writePowerLine(const DeviceFile& file, PowerLineFrequency frequency) {
    if (query(file, V4L2_CID_POWER_LINE_FREQUENCY))
        write(file, V4L2_CID_POWER_LINE_FREQUENCY, frequency, "set the power line frequency");
}

} // namespace Zentara::V4l2
