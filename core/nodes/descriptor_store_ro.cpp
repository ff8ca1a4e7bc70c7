#include <zentara/core/descriptor_store_ro.h>

#include <optional>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/core/device_descriptor.h>
#include <zentara/core/guids.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/io/hardware_requests.h>
#include <zentara/io/i2c_requests.h>
#include <zentara/io/uvc_command_request.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

namespace Zentara::Core {

using Zentara::Plugin::NotSupportedPluginException;

namespace {

/// The first three words of a request.
struct RequestWords {
    std::uint32_t prefix;
    std::uint32_t a;
    std::uint32_t b;
};

/// Every kind that begins with three words of its own is read as a raw chip command; the type code is not looked
/// at. The other kinds have no such words.
std::optional<RequestWords> requestWords(const IO::xuRequest* request) {
    if (const auto* command = dynamic_cast<const IO::UVCCommandRequest*>(request))
        return RequestWords{static_cast<std::uint32_t>(command->getPrefix()), command->getA(),
                            command->getB()};
    if (const auto* command = dynamic_cast<const IO::setI2CRegisterRequest*>(request))
        return RequestWords{command->getDeviceAddress(), command->getRegisterAddress(), command->getValue()};
    if (const auto* command = dynamic_cast<const IO::setHardwareVersionRequest*>(request)) {
        const ModuleIdInternal& first = command->getModules()[0];
        return RequestWords{first.vendorId, first.productId, first.revision};
    }
    return std::nullopt;
}

/// The value that the list writes to a register; the last write counts.
bool findValue(const RequestList* list, std::uint32_t id, std::uint32_t& value) {
    bool found = false;
    if (!list)
        return found;
    for (const auto& request : *list) {
        const std::optional<RequestWords> words = requestWords(request.get());
        if (words && words->prefix == IO::UVC_TOF_CONTROLLER_REGISTER && words->a == id) {
            value = words->b;
            found = true;
        }
    }
    return found;
}

template<typename T>
const T& defined(const std::optional<T>& value, const char* message) {
    if (!value)
        throw NotSupportedPluginException(message);
    return *value;
}

const RequestList* address(const std::optional<RequestList>& list) { return list ? &*list : nullptr; }

/// The store's node descriptor, or an empty one.
const NodeDescriptor& node(const DescriptorStoreRO& store) {
    // Never destroyed: a store may be asked while the process ends.
    static const NodeDescriptor& empty = *new NodeDescriptor();
    const NodeDescriptor* descriptor = store.getNodeDescriptor();
    return descriptor ? *descriptor : empty;
}

} // namespace

struct DescriptorStoreRO::Impl {
    const RequestList* configurationSettings = nullptr; ///< not owned: the running mode's, as the node says
    Profile profile = Profile_DEFAULT;
};

DescriptorStoreRO::DescriptorStoreRO() : impl(std::make_unique<Impl>()) {}

DescriptorStoreRO::~DescriptorStoreRO() = default;

bool DescriptorStoreRO::selectNode(const HardwareIDs& /*ids*/, Profile /*profile*/) { return false; }

NodeType DescriptorStoreRO::getNodeType() const { return NodeType_NONE; }

GUID DescriptorStoreRO::getNodeImplGUID() const { return Guids::NULL_IMPL; }

GUID DescriptorStoreRO::getDeviceImplGUID() const { return Guids::NULL_IMPL; }

std::string DescriptorStoreRO::getNodeName() const { return {}; }

std::string DescriptorStoreRO::getDeviceName() const { return {}; }

HardwareIDs DescriptorStoreRO::getNodeHardwareIDs() const { return node(*this).hardwareIds; }

HardwareIDs DescriptorStoreRO::getDeviceHardwareIDs() const {
    const DeviceDescriptor* device = getDeviceDescriptor();
    return device ? device->hardwareIds : HardwareIDs();
}

const RequestList* DescriptorStoreRO::getPreCommonSettings() const {
    return address(node(*this).preCommonSettings);
}

const RequestList* DescriptorStoreRO::getSpecificSettings() const { return impl->configurationSettings; }

const RequestList* DescriptorStoreRO::getPostCommonSettings() const {
    return address(node(*this).postCommonSettings);
}

const RequestList* DescriptorStoreRO::getStopCommonSettings() const {
    return address(node(*this).stopCommonSettings);
}

std::uint64_t DescriptorStoreRO::getDepthCapabilities() const { return node(*this).firstFlags; }

std::uint64_t DescriptorStoreRO::getDepthFlags() const { return node(*this).secondFlags; }

FourCC DescriptorStoreRO::getFourCC() const { return node(*this).fourCC; }

std::uint64_t DescriptorStoreRO::getColorFlags() const { return node(*this).firstFlags; }

std::uint64_t DescriptorStoreRO::getCameraControlsFlags() const { return node(*this).secondFlags; }

std::uint64_t DescriptorStoreRO::getDeviceFlags() const {
    const DeviceDescriptor* device = getDeviceDescriptor();
    return device ? device->flags : 0;
}

std::int32_t DescriptorStoreRO::getDeviceCapabilities() const {
    const DeviceDescriptor* device = getDeviceDescriptor();
    return device ? device->capabilities : 0;
}

ROMElement DescriptorStoreRO::getROMElement(std::uint64_t id) const {
    const auto& elements = node(*this).romElements;
    const auto element = elements.find(id);
    if (element == elements.end())
        throw NotSupportedPluginException(Utils::Format("undefined ROMElement id %") % id);
    return element->second;
}

bool DescriptorStoreRO::getValue(std::uint32_t id, std::uint32_t& value) const {
    // In the order of sending, so that the last write counts as it does on the camera.
    bool found = findValue(getPreCommonSettings(), id, value);
    found |= findValue(impl->configurationSettings, id, value);
    found |= findValue(getPostCommonSettings(), id, value);
    return found;
}

bool DescriptorStoreRO::getCyclicErrorRecord(DepthNode::CameraMode /*mode*/,
                                             CyclicErrorRecord& /*record*/) const {
    return false;
}

bool DescriptorStoreRO::getTemperatureCalibration(DepthNode::CameraMode /*mode*/,
                                                  SensorValueArray& /*values*/) const {
    return false;
}

bool DescriptorStoreRO::getTemperatureCompensation(float& /*coefficient*/, int& /*sensorId*/) const {
    return false;
}

std::vector<Utils::SmartPtr<DepthBaseConfiguration>> DescriptorStoreRO::getDepthConfigurations() const {
    return {};
}

std::vector<Utils::SmartPtr<ColorConfiguration>> DescriptorStoreRO::getColorConfigurations() const {
    return {};
}

std::vector<Utils::SmartPtr<AudioConfiguration>> DescriptorStoreRO::getAudioConfigurations() const {
    return {};
}

GUID DescriptorStoreRO::getParameterInterpreterGUID() const { return Guids::NULL_IMPL; }

std::vector<ParameterType> DescriptorStoreRO::getParameters() const { return {}; }

HardwareVersionInternal DescriptorStoreRO::getHardwareVersion() const { return {}; }

RegionOfInterestInternal DescriptorStoreRO::getDefaultRegionOfInterest() const { return {}; }

std::string DescriptorStoreRO::getVendorName() const { return {}; }

std::string DescriptorStoreRO::getProductName() const { return {}; }

std::uint32_t DescriptorStoreRO::getNodeIndex() const { return 0; }

void DescriptorStoreRO::setProfile(Profile profile) { impl->profile = profile; }

Profile DescriptorStoreRO::getProfile() const { return impl->profile; }

void DescriptorStoreRO::setConfigurationSettings(const RequestList* settings) {
    impl->configurationSettings = settings;
}

ExtrinsicParametersInternal DescriptorStoreRO::getDefaultExtrinsics() const {
    return defined(node(*this).defaultExtrinsics, "Extrinsics are not defined");
}

std::vector<CameraIntrinsics> DescriptorStoreRO::getDefaultDepthIntrinsicsArray() const {
    return defined(node(*this).defaultDepthIntrinsics, "Depth Intrinsics are not defined");
}

std::vector<CameraIntrinsics> DescriptorStoreRO::getDefaultColorIntrinsicsArray() const {
    return defined(node(*this).defaultColorIntrinsics, "Color Intrinsics are not defined");
}

} // namespace Zentara::Core
