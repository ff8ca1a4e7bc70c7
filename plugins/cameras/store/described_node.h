#pragma once

#include <string>
#include <vector>

#include <zentara/core/descriptor_details.h>

#include "plugins/descriptions/camera_description.h"

namespace Zentara::Cameras {

/// The view of a set of descriptions, one node of which is selected. Separate.
class DescribedNode final : public Core::DescriptorStoreRO,
                            public Core::NodeLabels,
                            public Core::DescriptorDetails {
public:
    explicit DescribedNode(std::vector<CameraDescription> descriptions);

    bool selectNode(const HardwareIDs& ids, Core::Profile profile) override;
    [[nodiscard]] NodeType getNodeType() const override;
    [[nodiscard]] GUID getNodeImplGUID() const override;
    [[nodiscard]] GUID getDeviceImplGUID() const override;
    [[nodiscard]] std::string getNodeName() const override;
    [[nodiscard]] std::string getDeviceName() const override;
    [[nodiscard]] const Core::DeviceDescriptor* getDeviceDescriptor() const override;
    [[nodiscard]] const Core::NodeDescriptor* getNodeDescriptor() const override;
    [[nodiscard]] bool getCyclicErrorRecord(DepthNode::CameraMode mode,
                                            CyclicErrorRecord& record) const override;
    [[nodiscard]] bool getTemperatureCalibration(DepthNode::CameraMode mode,
                                                 SensorValueArray& values) const override;
    [[nodiscard]] bool getTemperatureCompensation(float& coefficient, int& sensorId) const override;
    /// The modes are copies.
    [[nodiscard]] std::vector<Utils::SmartPtr<DepthBaseConfiguration>>
    getDepthConfigurations() const override;
    [[nodiscard]] std::vector<Utils::SmartPtr<ColorConfiguration>> getColorConfigurations() const override;
    [[nodiscard]] std::vector<Utils::SmartPtr<AudioConfiguration>> getAudioConfigurations() const override;
    [[nodiscard]] GUID getParameterInterpreterGUID() const override;
    [[nodiscard]] std::vector<ParameterType> getParameters() const override;
    [[nodiscard]] HardwareVersionInternal getHardwareVersion() const override;
    [[nodiscard]] RegionOfInterestInternal getDefaultRegionOfInterest() const override;
    [[nodiscard]] std::string getVendorName() const override;
    [[nodiscard]] std::string getProductName() const override;
    [[nodiscard]] std::uint32_t getNodeIndex() const override;
    [[nodiscard]] std::string getParameterName(ParameterType parameter) const override;
    [[nodiscard]] std::string getTemperatureSensorName(std::int32_t sensorId) const override;
    [[nodiscard]] std::optional<Core::AccelerometerLabel> getAccelerometer() const override;
    [[nodiscard]] std::string getControllerName() const override;
    [[nodiscard]] std::uint32_t getDepthUnit() const override;
    [[nodiscard]] Core::DepthAlong getDepthAlong() const override;

private:
    const std::vector<CameraDescription> cameras;
    const CameraDescription* camera = nullptr;   ///< the three are those of the selected node, or all null
    const NodeDescription* node = nullptr;       ///< of `camera`
    const ProfileDescription* profile = nullptr; ///< of `node`
};

} // namespace Zentara::Cameras
