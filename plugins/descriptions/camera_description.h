#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/core/descriptor_details.h>
#include <zentara/core/device_descriptor.h>
#include <zentara/core/node_descriptor.h>
#include <zentara/core/node_labels.h>
#include <zentara/core/profile.h>
#include <zentara/cyclic_error_record.h>
#include <zentara/depth_configuration.h>
#include <zentara/guid.h>
#include <zentara/hardware_version_internal.h>
#include <zentara/node_type.h>
#include <zentara/parameter_type.h>
#include <zentara/region_of_interest_internal.h>
#include <zentara/sensor_value_array.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara::Cameras {

/// What a description says of a node in one profile.
struct ProfileDescription {
    Core::Profile profile = Core::Profile_DEFAULT;
    Core::NodeDescriptor descriptor;
    RegionOfInterestInternal regionOfInterest;
    std::uint32_t depthUnit = 0; ///< micrometres; 0 unless told
    Core::DepthAlong depthAlong = Core::DepthAlong::Axis;
    std::array<std::optional<SensorValueArray>, 2> temperatureCalibration; ///< by camera mode
    std::array<std::optional<CyclicErrorRecord>, 2> cyclicErrorCorrection; ///< by camera mode
    std::optional<SensorValue> temperatureCompensation;                    ///< coefficient and sensor
    std::vector<Utils::SmartPtr<DepthConfiguration>> depthModes;
    std::vector<Utils::SmartPtr<ColorConfiguration>> colorModes;
    std::vector<Utils::SmartPtr<AudioConfiguration>> audioModes;
};

struct NodeDescription {
    NodeType type = NodeType_NONE;
    std::string name;
    std::uint32_t index = 0; ///< among the camera's nodes
    std::uint32_t interfaceNumber = 0;
    GUID implementation{};
    GUID device{};
    GUID parameterInterpreter{};
    std::vector<ParameterType> parameters;
    std::map<ParameterType, std::string> parameterNames;
    std::map<std::int32_t, std::string> temperatureSensors; ///< names by id
    std::optional<Core::AccelerometerLabel> accelerometer;
    std::vector<ProfileDescription> profiles; ///< the default one first

    [[nodiscard]] const ProfileDescription* find(Core::Profile profile) const;
};

/// One described camera model.
struct CameraDescription {
    std::string source; ///< the file
    int modelLine = 1;
    int hardwareLine = 1;
    int serialLine = 1;
    std::string model;
    std::string vendorName;
    std::string productName;
    std::string serialNumber; ///< of the one that is plugged in by default
    std::string controller;   ///< its name; empty for a camera without one
    Core::DeviceDescriptor device;
    HardwareVersionInternal hardwareVersion;
    std::vector<NodeDescription> nodes;
};

/// \param source names the text in messages
/// \throws Plugin::ConfigurationPluginException with source, line and field of what is wrong
[[nodiscard]] CameraDescription readDescription(const std::string& text, const std::string& source);

/// "cameras/" below the install root.
[[nodiscard]] std::string descriptionFolder();

/// All descriptions of a folder, in the order of the files' names. One that is wrong, or that describes again what
/// a file before it has described, is left out; the log tells why.
[[nodiscard]] std::vector<CameraDescription> readDescriptionFolder(const std::string& folder);

} // namespace Zentara::Cameras
