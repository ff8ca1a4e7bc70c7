#include "plugins/cameras/store/described_node.h"

#include <utility>

#include <zentara/core/guids.h>

namespace Zentara::Cameras {
namespace {

/// What is stored for a camera mode, if there is such a mode and it has something.
template<typename T>
bool copyMode(const std::array<std::optional<T>, 2>& modes, DepthNode::CameraMode mode, T& result) {
    if (mode != DepthNode::CameraMode_0 && mode != DepthNode::CameraMode_1)
        return false;
    const std::optional<T>& stored = modes[static_cast<std::size_t>(mode)];
    if (stored)
        result = *stored;
    return stored.has_value();
}

/// Modes can be changed by whoever has one; the description stays as it was read.
template<typename Base, typename Mode>
std::vector<Utils::SmartPtr<Base>> copies(const std::vector<Utils::SmartPtr<Mode>>& modes) {
    std::vector<Utils::SmartPtr<Base>> result;
    for (const auto& mode : modes)
        result.push_back(Utils::SmartPtr<Base>(Utils::makeRefcounted<Mode>(*mode)));
    return result;
}

/// The name, or nothing.
template<typename Key>
std::string nameIn(const std::map<Key, std::string>& names, Key key) {
    const auto found = names.find(key);
    return found == names.end() ? std::string() : found->second;
}

} // namespace

DescribedNode::DescribedNode(std::vector<CameraDescription> descriptions)
    : cameras(std::move(descriptions)) {}

bool DescribedNode::selectNode(const HardwareIDs& ids, Core::Profile wanted) {
    for (const CameraDescription& candidate : cameras) {
        for (const NodeDescription& candidateNode : candidate.nodes) {
            const ProfileDescription* found = candidateNode.find(wanted);
            if (found == nullptr || !(found->descriptor.hardwareIds == ids))
                continue;
            camera = &candidate;
            node = &candidateNode;
            profile = found;
            setProfile(wanted);
            return true;
        }
    }
    return false;
}

NodeType DescribedNode::getNodeType() const { return node ? node->type : NodeType_NONE; }

GUID DescribedNode::getNodeImplGUID() const { return node ? node->implementation : Core::Guids::NULL_IMPL; }

GUID DescribedNode::getDeviceImplGUID() const { return node ? node->device : Core::Guids::NULL_IMPL; }

std::string DescribedNode::getNodeName() const { return node ? node->name : std::string(); }

std::string DescribedNode::getDeviceName() const { return camera ? camera->model : std::string(); }

const Core::DeviceDescriptor* DescribedNode::getDeviceDescriptor() const {
    return camera ? &camera->device : nullptr;
}

const Core::NodeDescriptor* DescribedNode::getNodeDescriptor() const {
    return profile ? &profile->descriptor : nullptr;
}

bool DescribedNode::getCyclicErrorRecord(DepthNode::CameraMode mode, CyclicErrorRecord& record) const {
    return profile && copyMode(profile->cyclicErrorCorrection, mode, record);
}

bool DescribedNode::getTemperatureCalibration(DepthNode::CameraMode mode, SensorValueArray& values) const {
    return profile && copyMode(profile->temperatureCalibration, mode, values);
}

bool DescribedNode::getTemperatureCompensation(float& coefficient, int& sensorId) const {
    if (!profile || !profile->temperatureCompensation)
        return false;
    coefficient = profile->temperatureCompensation->value;
    sensorId = profile->temperatureCompensation->sensorId;
    return true;
}

std::vector<Utils::SmartPtr<DepthBaseConfiguration>> DescribedNode::getDepthConfigurations() const {
    if (!profile)
        return {};
    return copies<DepthBaseConfiguration>(profile->depthModes);
}

std::vector<Utils::SmartPtr<ColorConfiguration>> DescribedNode::getColorConfigurations() const {
    if (!profile)
        return {};
    return copies<ColorConfiguration>(profile->colorModes);
}

std::vector<Utils::SmartPtr<AudioConfiguration>> DescribedNode::getAudioConfigurations() const {
    if (!profile)
        return {};
    return copies<AudioConfiguration>(profile->audioModes);
}

GUID DescribedNode::getParameterInterpreterGUID() const {
    return node ? node->parameterInterpreter : Core::Guids::NULL_IMPL;
}

std::vector<ParameterType> DescribedNode::getParameters() const {
    return node ? node->parameters : std::vector<ParameterType>();
}

HardwareVersionInternal DescribedNode::getHardwareVersion() const {
    return camera ? camera->hardwareVersion : HardwareVersionInternal();
}

RegionOfInterestInternal DescribedNode::getDefaultRegionOfInterest() const {
    return profile ? profile->regionOfInterest : RegionOfInterestInternal();
}

std::string DescribedNode::getVendorName() const { return camera ? camera->vendorName : std::string(); }

std::string DescribedNode::getProductName() const { return camera ? camera->productName : std::string(); }

std::uint32_t DescribedNode::getNodeIndex() const { return node ? node->index : 0; }

std::string DescribedNode::getParameterName(ParameterType parameter) const {
    return node ? nameIn(node->parameterNames, parameter) : std::string();
}

std::string DescribedNode::getTemperatureSensorName(std::int32_t sensorId) const {
    return node ? nameIn(node->temperatureSensors, sensorId) : std::string();
}

std::optional<Core::AccelerometerLabel> DescribedNode::getAccelerometer() const {
    return node ? node->accelerometer : std::nullopt;
}

std::string DescribedNode::getControllerName() const { return camera ? camera->controller : std::string(); }

std::uint32_t DescribedNode::getDepthUnit() const { return profile ? profile->depthUnit : 0; }

Core::DepthAlong DescribedNode::getDepthAlong() const {
    return profile ? profile->depthAlong : Core::DepthAlong::Axis;
}

} // namespace Zentara::Cameras
