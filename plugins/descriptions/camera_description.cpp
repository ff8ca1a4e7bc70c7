#include "plugins/descriptions/camera_description.h"

#include <algorithm>

#include <zentara/core/guids.h>
#include <zentara/io/camera_chip.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>
#include <zentara/utils/install_root.h>
#include <zentara/utils/text.h>

#include "plugins/descriptions/json_fields.h"
#include "plugins/descriptions/profile_reader.h"

namespace Zentara::Cameras {
namespace {

using Utils::Format;

constexpr NodeType nodeTypes[] = {NodeType_DEPTH, NodeType_COLOR, NodeType_AUDIO};
constexpr std::uint64_t lastCapability = 0x7FFFFFFF;
constexpr std::uint64_t lastProfile = 0x7FFFFFFF;
constexpr std::uint64_t lastParameter = ParameterType_INT_15;

ModuleIdInternal readModule(const JsonValue& value) {
    JsonFields fields(value);
    ModuleIdInternal module;
    module.vendorId = fields.need("vendorId").word();
    module.productId = fields.need("productId").word();
    module.revision = fields.need("revision").word();
    module.variant = fields.need("variant").word();
    fields.finish();
    return module;
}

HardwareVersionInternal readHardwareVersion(const JsonValue& value) {
    JsonFields fields(value);
    HardwareVersionInternal version;
    version.camera = readModule(fields.need("camera"));
    if (const auto modules = fields.find("modules")) {
        std::size_t index = 0;
        for (const JsonValue& module : modules->list(version.modules.size()))
            version.modules[index++] = readModule(module);
    }
    version.version = fields.need("version").word();
    fields.finish();
    return version;
}

std::string readController(const JsonValue& value) {
    const std::string name = IO::CameraChip::knownName(value.text());
    if (name.empty())
        value.fail(Format("'%' is none of %") % value.text() % Utils::join(IO::CameraChip::names(), " "));
    return name;
}

/// Puts the controller into the list of modules, unless it stands there.
void listController(const JsonValue& list, const std::string& controller, std::uint32_t vendor,
                    HardwareVersionInternal& version) {
    const std::string listed = IO::CameraChip::listedIn(version);
    if (controller.empty() || listed == controller)
        return;
    if (!listed.empty())
        list.fail(Format("names the controller %, but the camera has an %") % listed % controller);
    const std::uint32_t product = IO::CameraChip::productOf(controller);
    const auto free = std::find(version.modules.begin(), version.modules.end(), ModuleIdInternal());
    if (free == version.modules.end())
        list.fail(Format("leaves no room for the controller; one of its modules must have the productId %") %
                  product);
    *free = {vendor, product, 0, 0};
}

Core::DeviceDescriptor readDevice(JsonFields& fields) {
    Core::DeviceDescriptor device;
    device.hardwareIds.vendorId = fields.need("vendorId").word();
    device.hardwareIds.productId = fields.need("productId").word();
    device.hardwareIds.revision = fields.need("revision").word();
    if (const auto field = fields.find("capabilities"))
        device.capabilities = static_cast<std::int32_t>(field->whole(0, lastCapability));
    if (const auto field = fields.find("flags"))
        device.flags = field->whole(0, UINT64_MAX);
    return device;
}

NodeType readNodeType(const JsonValue& value) {
    const std::string name = value.text();
    for (const NodeType type : nodeTypes) {
        if (name == nodeTypeName(type))
            return type;
    }
    value.fail(Format("'%' is none of depth color audio") % name);
}

/// A number alone, or an object that names it as well.
void readParameters(const JsonValue& list, NodeDescription& node) {
    for (const JsonValue& value : list.list(lastParameter + 1)) {
        std::string name;
        const auto numberOf = [&] {
            if (!value.isObject())
                return value.whole(0, lastParameter);
            JsonFields fields(value);
            const std::uint64_t number = fields.need("number").whole(0, lastParameter);
            name = fields.need("name").name();
            fields.finish();
            return number;
        };
        const auto parameter = static_cast<ParameterType>(numberOf());
        if (std::count(node.parameters.begin(), node.parameters.end(), parameter) != 0)
            value.fail(Format("parameter % stands there twice") % static_cast<int>(parameter));
        node.parameters.push_back(parameter);
        if (!name.empty())
            node.parameterNames.emplace(parameter, name);
    }
}

void readTemperatureSensors(const JsonValue& list, NodeDescription& node) {
    for (const JsonValue& value : list.list()) {
        JsonFields fields(value);
        const JsonValue id = fields.need("sensorId");
        if (!node.temperatureSensors
                 .emplace(static_cast<std::int32_t>(id.whole(0, 0xFF)), fields.need("name").name())
                 .second)
            id.fail("stands there twice");
        fields.finish();
    }
}

Core::AccelerometerLabel readAccelerometer(const JsonValue& value) {
    JsonFields fields(value);
    Core::AccelerometerLabel label;
    label.registerAddress = static_cast<std::uint32_t>(fields.need("register").whole(0, 0xFFFF));
    if (const auto name = fields.find("name"))
        label.name = name->name();
    fields.finish();
    return label;
}

void readProfiles(const JsonValue& list, NodeDescription& node) {
    for (const JsonValue& value : list.list()) {
        JsonFields fields(value);
        ProfileDescription profile = node.profiles.front();
        const JsonValue number = fields.need("profile");
        profile.profile = static_cast<Core::Profile>(number.whole(1, lastProfile));
        if (node.find(profile.profile) != nullptr)
            number.fail("stands there twice");
        readProfileFields(fields, node.type, profile);
        fields.finish();
        node.profiles.push_back(std::move(profile));
    }
}

NodeDescription readNode(const JsonValue& value, const HardwareIDs& camera) {
    JsonFields fields(value);
    NodeDescription node;
    node.type = readNodeType(fields.need("type"));
    if (const auto field = fields.find("name"))
        node.name = field->text();
    node.interfaceNumber = fields.need("interfaceNumber").word();
    node.implementation = fields.need("implementation").guid();
    node.device = fields.need("device").guid();
    const auto interpreter = fields.find("parameterInterpreter");
    node.parameterInterpreter = interpreter ? interpreter->guid() : Core::Guids::NULL_IMPL;
    if (const auto field = fields.find("parameters"))
        readParameters(*field, node);
    if (const auto field = fields.find("temperatureSensors"))
        readTemperatureSensors(*field, node);
    if (const auto field = fields.find("accelerometer"))
        node.accelerometer = readAccelerometer(*field);

    ProfileDescription& first = node.profiles.emplace_back();
    first.descriptor.hardwareIds = camera;
    first.descriptor.hardwareIds.interfaceNumber = node.interfaceNumber;
    readProfileFields(fields, node.type, first);
    if (const auto field = fields.find("profiles"))
        readProfiles(*field, node);
    fields.finish();
    return node;
}

void readNodes(const JsonValue& list, CameraDescription& camera) {
    const std::vector<JsonValue> values = list.list();
    if (values.empty())
        list.fail("a camera has one node at least");
    for (const JsonValue& value : values) {
        NodeDescription node = readNode(value, camera.device.hardwareIds);
        node.index = static_cast<std::uint32_t>(camera.nodes.size());
        for (const NodeDescription& other : camera.nodes) {
            if (other.type == node.type)
                value.fail(Format("the camera has a % node already") % nodeTypeName(node.type));
            if (other.interfaceNumber == node.interfaceNumber)
                value.fail(Format("interface % belongs to another node") % node.interfaceNumber);
        }
        camera.nodes.push_back(std::move(node));
    }
}

bool sameHardware(const CameraDescription& left, const CameraDescription& right) {
    return left.device.hardwareIds == right.device.hardwareIds;
}

/// \throws Plugin::ConfigurationPluginException when another file describes the same camera
void requireNew(const CameraDescription& camera, const std::vector<CameraDescription>& others) {
    for (const CameraDescription& other : others) {
        if (other.model == camera.model)
            throw Plugin::ConfigurationPluginException(Format("%, line %, model: '%' is described by %") %
                                                       camera.source % camera.modelLine % camera.model %
                                                       other.source);
        if (sameHardware(other, camera))
            throw Plugin::ConfigurationPluginException(
                Format("%, line %, productId: % describes a camera with the same identifiers") %
                camera.source % camera.hardwareLine % other.source);
        if (other.serialNumber == camera.serialNumber)
            throw Plugin::ConfigurationPluginException(
                Format("%, line %, serialNumber: '%' belongs to the camera of %") % camera.source %
                camera.serialLine % camera.serialNumber % other.source);
    }
}

} // namespace

const ProfileDescription* NodeDescription::find(Core::Profile wanted) const {
    for (const ProfileDescription& candidate : profiles) {
        if (candidate.profile == wanted)
            return &candidate;
    }
    return nullptr;
}

CameraDescription readDescription(const std::string& text, const std::string& source) {
    const LocatedJson json = parseLocatedJson(text, source);
    JsonFields fields(JsonValue(json, source, {}));
    static_cast<void>(fields.need("format").whole(1, 1));
    CameraDescription camera;
    camera.source = source;
    const JsonValue model = fields.need("model");
    camera.model = model.name();
    camera.modelLine = model.line();
    camera.hardwareLine = fields.need("productId").line();
    if (const auto field = fields.find("vendorName"))
        camera.vendorName = field->text();
    if (const auto field = fields.find("productName"))
        camera.productName = field->text();
    const JsonValue serialNumber = fields.need("serialNumber");
    camera.serialNumber = serialNumber.name();
    camera.serialLine = serialNumber.line();
    camera.device = readDevice(fields);
    if (const auto field = fields.find("controller"))
        camera.controller = readController(*field);
    const auto hardwareVersion = fields.find("hardwareVersion");
    if (hardwareVersion)
        camera.hardwareVersion = readHardwareVersion(*hardwareVersion);
    listController(hardwareVersion.value_or(model), camera.controller, camera.device.hardwareIds.vendorId,
                   camera.hardwareVersion);
    readNodes(fields.need("nodes"), camera);
    fields.finish();
    return camera;
}

std::string descriptionFolder() {
    std::string root;
    std::string suffix;
    Utils::getZTRootDirectory(root, suffix);
    return root + "cameras/";
}

std::vector<CameraDescription> readDescriptionFolder(const std::string& folder) {
    std::vector<CameraDescription> cameras;
    for (const std::string& path : Utils::getFileList(folder, "json")) {
        try {
            CameraDescription camera = readDescription(Utils::readFile(path), path);
            requireNew(camera, cameras);
            cameras.push_back(std::move(camera));
        } catch (const Plugin::ConfigurationPluginException&) {
            // Its construction has put the message into the log.
        } catch (const Utils::UIOException& failure) {
            const Plugin::ConfigurationPluginException logged(Format("camera description: %") %
                                                              failure.what());
        }
    }
    return cameras;
}

} // namespace Zentara::Cameras
