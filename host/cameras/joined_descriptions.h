#pragma once

#include <utility>
#include <vector>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/depth_base_configuration.h>

namespace Zentara::Host {

/// Several descriptor stores as one: selecting a node asks each in turn, and the one that has it answers everything
/// else. Separate, as any store.
class JoinedDescriptions final : public Core::DescriptorStoreRO {
public:
    /// \param views at least one; they must outlive the result
    explicit JoinedDescriptions(std::vector<Core::DescriptorStoreRO*> views) : stores(std::move(views)) {}

    bool selectNode(const HardwareIDs& ids, Core::Profile profile) override {
        for (std::size_t index = 0; index < stores.size(); ++index) {
            if (!stores[index]->selectNode(ids, profile))
                continue;
            selected = index;
            setProfile(profile);
            return true;
        }
        return false;
    }

    // What the selected store answers.
    [[nodiscard]] NodeType getNodeType() const override { return current().getNodeType(); }
    [[nodiscard]] GUID getNodeImplGUID() const override { return current().getNodeImplGUID(); }
    [[nodiscard]] GUID getDeviceImplGUID() const override { return current().getDeviceImplGUID(); }
    [[nodiscard]] std::string getNodeName() const override { return current().getNodeName(); }
    [[nodiscard]] std::string getDeviceName() const override { return current().getDeviceName(); }
    [[nodiscard]] HardwareIDs getNodeHardwareIDs() const override { return current().getNodeHardwareIDs(); }
    [[nodiscard]] HardwareIDs getDeviceHardwareIDs() const override {
        return current().getDeviceHardwareIDs();
    }
    [[nodiscard]] const Core::RequestList* getPreCommonSettings() const override {
        return current().getPreCommonSettings();
    }
    [[nodiscard]] const Core::RequestList* getSpecificSettings() const override {
        return current().getSpecificSettings();
    }
    [[nodiscard]] const Core::RequestList* getPostCommonSettings() const override {
        return current().getPostCommonSettings();
    }
    [[nodiscard]] const Core::RequestList* getStopCommonSettings() const override {
        return current().getStopCommonSettings();
    }
    [[nodiscard]] std::uint64_t getDepthCapabilities() const override {
        return current().getDepthCapabilities();
    }
    [[nodiscard]] std::uint64_t getDepthFlags() const override { return current().getDepthFlags(); }
    [[nodiscard]] FourCC getFourCC() const override { return current().getFourCC(); }
    [[nodiscard]] std::uint64_t getColorFlags() const override { return current().getColorFlags(); }
    [[nodiscard]] std::uint64_t getCameraControlsFlags() const override {
        return current().getCameraControlsFlags();
    }
    [[nodiscard]] std::uint64_t getDeviceFlags() const override { return current().getDeviceFlags(); }
    [[nodiscard]] std::int32_t getDeviceCapabilities() const override {
        return current().getDeviceCapabilities();
    }
    [[nodiscard]] ROMElement getROMElement(std::uint64_t id) const override {
        return current().getROMElement(id);
    }
    bool getValue(std::uint32_t id, std::uint32_t& value) const override {
        return current().getValue(id, value);
    }
    [[nodiscard]] const Core::DeviceDescriptor* getDeviceDescriptor() const override {
        return current().getDeviceDescriptor();
    }
    [[nodiscard]] const Core::NodeDescriptor* getNodeDescriptor() const override {
        return current().getNodeDescriptor();
    }
    [[nodiscard]] bool getCyclicErrorRecord(DepthNode::CameraMode mode,
                                            CyclicErrorRecord& record) const override {
        return current().getCyclicErrorRecord(mode, record);
    }
    [[nodiscard]] bool getTemperatureCalibration(DepthNode::CameraMode mode,
                                                 SensorValueArray& values) const override {
        return current().getTemperatureCalibration(mode, values);
    }
    [[nodiscard]] bool getTemperatureCompensation(float& coefficient, int& sensorId) const override {
        return current().getTemperatureCompensation(coefficient, sensorId);
    }
    [[nodiscard]] std::vector<Utils::SmartPtr<DepthBaseConfiguration>>
    getDepthConfigurations() const override {
        return current().getDepthConfigurations();
    }
    [[nodiscard]] std::vector<Utils::SmartPtr<ColorConfiguration>> getColorConfigurations() const override {
        return current().getColorConfigurations();
    }
    [[nodiscard]] std::vector<Utils::SmartPtr<AudioConfiguration>> getAudioConfigurations() const override {
        return current().getAudioConfigurations();
    }
    [[nodiscard]] GUID getParameterInterpreterGUID() const override {
        return current().getParameterInterpreterGUID();
    }
    [[nodiscard]] std::vector<ParameterType> getParameters() const override {
        return current().getParameters();
    }
    [[nodiscard]] HardwareVersionInternal getHardwareVersion() const override {
        return current().getHardwareVersion();
    }
    [[nodiscard]] RegionOfInterestInternal getDefaultRegionOfInterest() const override {
        return current().getDefaultRegionOfInterest();
    }
    [[nodiscard]] std::string getVendorName() const override { return current().getVendorName(); }
    [[nodiscard]] std::string getProductName() const override { return current().getProductName(); }
    [[nodiscard]] std::uint32_t getNodeIndex() const override { return current().getNodeIndex(); }

private:
    [[nodiscard]] Core::DescriptorStoreRO& current() const { return *stores[selected]; }

    const std::vector<Core::DescriptorStoreRO*> stores;
    std::size_t selected = 0;
};

} // namespace Zentara::Host
