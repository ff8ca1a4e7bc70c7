#pragma once

#include <vector>

#include <zentara/camera_controls.h>
#include <zentara/io/device_request.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara {
class ColorConfiguration;
}

namespace Zentara::IO {

/// Changes one setting of a colour camera; its unit stands at `CameraControlsEnum`.
class ZENTARA_API setCameraControlRequest : public deviceRequest {
public:
    setCameraControlRequest(AVDeviceInterface* device, CameraControlsEnum control, CameraControlValue value);

    [[nodiscard]] CameraControlsEnum getControl() const;
    [[nodiscard]] CameraControlValue getValue() const;

protected:
    ~setCameraControlRequest() override;

private:
    CameraControlsEnum control; ///< which
    CameraControlValue value;   ///< to what
};

/// Asks what the settings of a colour camera accept.
class ZENTARA_API getCameraControlRangesRequest : public deviceRequest {
public:
    /// \param ranges the caller's; must live until the request is done
    getCameraControlRangesRequest(AVDeviceInterface* device, CameraControlRanges& ranges);

    /// Where the device puts its answer.
    [[nodiscard]] CameraControlRanges& getRanges() const;

protected:
    ~getCameraControlRangesRequest() override;

private:
    CameraControlRanges& ranges; ///< not owned
};

/// Asks for the colour modes.
class ZENTARA_API getColorConfigurationsRequest : public deviceRequest {
public:
    /// \param configurations the caller's; must live until the request is done
    getColorConfigurationsRequest(AVDeviceInterface* device,
                                  std::vector<Utils::SmartPtr<ColorConfiguration>>& configurations);

    /// The device appends its modes.
    [[nodiscard]] std::vector<Utils::SmartPtr<ColorConfiguration>>& getConfigurations() const;

protected:
    ~getColorConfigurationsRequest() override;

private:
    std::vector<Utils::SmartPtr<ColorConfiguration>>& configurations; ///< not owned
};

} // namespace Zentara::IO
