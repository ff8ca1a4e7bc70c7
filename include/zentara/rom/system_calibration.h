#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/accelerometer_calibration_data.h>
#include <zentara/rom/extrinsics_data.h>
#include <zentara/rom/intrinsics_data.h>
#include <zentara/rom/object.h>

namespace Zentara::ROM {

/// Section type 2: any number of lens models per camera, one for each image size, the transform between the cameras,
/// and the accelerometer. A copyable value. Separate.
class ZENTARA_API SystemCalibration : public Object {
public:
    SystemCalibration(const AccelerometerCalibrationData& accelerometer, const ExtrinsicsData& extrinsics,
                      const std::vector<IntrinsicsData>& depthIntrinsics,
                      const std::vector<IntrinsicsData>& colorIntrinsics);
    SystemCalibration(const SystemCalibration& other);
    SystemCalibration& operator=(const SystemCalibration& other);
    ~SystemCalibration() override;

    ContainerSectionType getType() const override;
    std::vector<std::uint8_t> serialize() const override;

    /// In flash order.
    std::vector<IntrinsicsData> getDepthIntrinsics() const;
    std::vector<IntrinsicsData> getColorIntrinsics() const;
    const ExtrinsicsData& getExtrinsics() const;
    const AccelerometerCalibrationData& getAccelerometerCalibration() const;

protected:
    friend class Object;

    /// Never null; owned by the caller.
    static SystemCalibration* deserialize(const std::vector<std::uint8_t>& bytes);

private:
    AccelerometerCalibrationData accelerometer;
    ExtrinsicsData extrinsics;
    std::vector<IntrinsicsData> depthIntrinsics;
    std::vector<IntrinsicsData> colorIntrinsics;
};

} // namespace Zentara::ROM
