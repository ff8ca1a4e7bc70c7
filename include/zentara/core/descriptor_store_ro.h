#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <zentara/camera_intrinsics.h>
#include <zentara/core/node_descriptor.h>
#include <zentara/core/profile.h>
#include <zentara/cyclic_error_record.h>
#include <zentara/depth_node.h>
#include <zentara/export.h>
#include <zentara/extrinsic_parameters_internal.h>
#include <zentara/four_cc.h>
#include <zentara/guid.h>
#include <zentara/hardware_ids.h>
#include <zentara/hardware_version_internal.h>
#include <zentara/node_type.h>
#include <zentara/parameter_type.h>
#include <zentara/region_of_interest_internal.h>
#include <zentara/rom_element.h>
#include <zentara/sensor_value_array.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara {
class AudioConfiguration;
class ColorConfiguration;
class DepthBaseConfiguration;
} // namespace Zentara

namespace Zentara::Core {

struct DeviceDescriptor;

/// What a camera node is: its identity, formats, flags, command lists, ROM elements and default lens
/// models. A read-only view that enumerators, devices, nodes and calibration are handed; the concrete store
/// behind it supplies two records, and overrides what it knows more about.
///
/// A store describes one node at a time, the one selected last; a store that has selected none answers as an
/// empty record does. Pointers that it hands out are its own and hold until the next selection. Separate: who shares
/// a store with another thread gets a view of his own.
///
/// What it knows is the model's, the same for each camera of that kind. Lens models, extrinsics and corrections are
/// defaults: a camera's own ROM comes first.
///
/// The order of the virtual operations is the boundary to stores that are built separately.
class ZENTARA_API DescriptorStoreRO {
public:
    DescriptorStoreRO(const DescriptorStoreRO&) = delete;
    DescriptorStoreRO& operator=(const DescriptorStoreRO&) = delete;
    virtual ~DescriptorStoreRO();

    /// Makes the node with these identifiers the one that is described. By default there is none. All four must fit.
    /// \return false if there is no such node; the selection stays as it is
    virtual bool selectNode(const HardwareIDs& ids, Profile profile);

    /// `NodeType_NONE` by default.
    [[nodiscard]] virtual NodeType getNodeType() const;

    /// The implementations that serve the node and its device; "NULL_IMPL" by default.
    [[nodiscard]] virtual GUID getNodeImplGUID() const;
    [[nodiscard]] virtual GUID getDeviceImplGUID() const;

    /// Names for people; empty by default.
    [[nodiscard]] virtual std::string getNodeName() const;
    [[nodiscard]] virtual std::string getDeviceName() const;

    /// Those of the node descriptor; all 0 without one.
    [[nodiscard]] virtual HardwareIDs getNodeHardwareIDs() const;

    /// By default those of the device descriptor; all 0 without one.
    [[nodiscard]] virtual HardwareIDs getDeviceHardwareIDs() const;

    /// The requests sent before those of the configuration, the configuration's own, those sent after them,
    /// and those sent when the stream stops. Null where there are none. Each list in its order; lent, see above.
    [[nodiscard]] virtual const RequestList* getPreCommonSettings() const;
    [[nodiscard]] virtual const RequestList* getSpecificSettings() const;
    [[nodiscard]] virtual const RequestList* getPostCommonSettings() const;
    [[nodiscard]] virtual const RequestList* getStopCommonSettings() const;

    /// Depth and colour nodes share the two flag words: the first is read by getDepthCapabilities and
    /// getColorFlags, the second by getDepthFlags and getCameraControlsFlags. What the bits mean is agreed between a
    /// description and the plug-ins that it names; of the camera-control flags bit N stands for setting N.
    [[nodiscard]] virtual std::uint64_t getDepthCapabilities() const;
    [[nodiscard]] virtual std::uint64_t getDepthFlags() const;
    [[nodiscard]] virtual FourCC getFourCC() const;
    [[nodiscard]] virtual std::uint64_t getColorFlags() const;
    [[nodiscard]] virtual std::uint64_t getCameraControlsFlags() const;

    /// Of the camera as a whole; 0 without a device descriptor.
    [[nodiscard]] virtual std::uint64_t getDeviceFlags() const;
    [[nodiscard]] virtual std::int32_t getDeviceCapabilities() const;

    /// Where that element lies in the camera's memory. \param id `storageROMElement`, or a number of the store's own
    /// \throws Zentara::Plugin::NotSupportedPluginException "undefined ROMElement id ID"
    [[nodiscard]] virtual ROMElement getROMElement(std::uint64_t id) const;

    /// The value that the settings write to a register: of the pre-common, the specific and the post-common
    /// ones the last write counts. Requests with another number of leading words do not match.
    /// \return false, with `value` unchanged, when nothing writes it
    [[nodiscard]] virtual bool getValue(std::uint32_t id, std::uint32_t& value) const;

    /// The two records that a store supplies, of the camera and of the selected node. They stay the store's. Null: the
    /// store has none, and reads as an empty one.
    [[nodiscard]] virtual const DeviceDescriptor* getDeviceDescriptor() const = 0;
    [[nodiscard]] virtual const NodeDescriptor* getNodeDescriptor() const = 0;

    /// What is stored for a camera mode: the correction, and what the sensors read at calibration in degrees Celsius.
    /// False by default, with the result unchanged.
    [[nodiscard]] virtual bool getCyclicErrorRecord(DepthNode::CameraMode mode,
                                                    CyclicErrorRecord& record) const;
    [[nodiscard]] virtual bool getTemperatureCalibration(DepthNode::CameraMode mode,
                                                         SensorValueArray& values) const;

    /// The one coefficient, millimetres to add for each degree above the calibration's, and the sensor that it belongs
    /// to. False by default, with the results unchanged.
    [[nodiscard]] virtual bool getTemperatureCompensation(float& coefficient, int& sensorId) const;

    /// The modes in which the node can stream, the first one to start with; none by default. The list is the caller's,
    /// the modes in it may be the store's own: who changes one copies it.
    [[nodiscard]] virtual std::vector<Utils::SmartPtr<DepthBaseConfiguration>> getDepthConfigurations() const;
    [[nodiscard]] virtual std::vector<Utils::SmartPtr<ColorConfiguration>> getColorConfigurations() const;
    [[nodiscard]] virtual std::vector<Utils::SmartPtr<AudioConfiguration>> getAudioConfigurations() const;

    /// The parameter back-end that serves the camera; "NULL_IMPL" by default.
    [[nodiscard]] virtual GUID getParameterInterpreterGUID() const;

    /// The parameters that the camera has; none by default.
    [[nodiscard]] virtual std::vector<ParameterType> getParameters() const;

    /// The modules of the camera, and where its sensor is read out at start, in pixels. All 0 by default.
    [[nodiscard]] virtual HardwareVersionInternal getHardwareVersion() const;
    [[nodiscard]] virtual RegionOfInterestInternal getDefaultRegionOfInterest() const;

    /// Names for people; empty by default.
    [[nodiscard]] virtual std::string getVendorName() const;
    [[nodiscard]] virtual std::string getProductName() const;

    /// Counts the nodes of one camera, from 0; 0 by default.
    [[nodiscard]] virtual std::uint32_t getNodeIndex() const;

    /// Which of several descriptions of the node is meant: `Profile_DEFAULT` at first. A note for the concrete store.
    void setProfile(Profile profile);
    [[nodiscard]] Profile getProfile() const;

    /// \param settings what `getSpecificSettings` returns from now on; not owned, may be null
    void setConfigurationSettings(const RequestList* settings);

    /// Copies of the defaults: from the depth to the colour camera, translation in millimetres; lens models in pixels,
    /// one for each image size.
    /// \throws Zentara::Plugin::NotSupportedPluginException "Extrinsics are not defined", "Depth Intrinsics are not
    ///         defined" or "Color Intrinsics are not defined"
    [[nodiscard]] ExtrinsicParametersInternal getDefaultExtrinsics() const;
    [[nodiscard]] std::vector<CameraIntrinsics> getDefaultDepthIntrinsicsArray() const;
    [[nodiscard]] std::vector<CameraIntrinsics> getDefaultColorIntrinsicsArray() const;

protected:
    DescriptorStoreRO();

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Core
