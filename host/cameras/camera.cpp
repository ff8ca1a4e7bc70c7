#include <zentara/host/camera.h>

#include <utility>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/core/node_labels.h>
#include <zentara/core/periodic_operation.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/host/camera_files.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/utils/format.h>

#include "host/attempt.h"
#include "host/cameras/camera_parameters.h"
#include "host/cameras/extension_units.h"
#include "host/cameras/real_camera.h"
#include "host/cameras/stream_description.h"
#include "host/guid_text.h"

namespace Zentara::Host {

using Utils::Format;

namespace {

std::string listOf(const std::vector<Mode>& modes) {
    std::string text;
    for (const Mode& mode : modes)
        text += (text.empty() ? "" : ", ") + mode.name + " (" + mode.text() + ")";
    return text.empty() ? "none" : text;
}

PluginName nameOf(const GUID& guid) { return {guidName(guid), guid}; }

NodeDescription describeNode(CameraParts& parts, const NodeEvent& node, Kind kind) {
    NodeDescription told;
    told.node = {kind, node.name, node.path, node.hardwareIds()};
    const Core::DescriptorStoreRO& store = parts.storeOf(node);
    Plugin::callPlugin([&] {
        told.nodePlugin = nameOf(store.getNodeImplGUID());
        told.devicePlugin = nameOf(store.getDeviceImplGUID());
        for (const StreamDescription& mode : modesOf(node, store))
            told.modes.push_back(modeOf(mode));
    });
    return told;
}

CameraDescription describeCamera(CameraParts& parts) {
    CameraDescription told;
    for (const NodeEvent& node : parts.entry().nodes) {
        if (const auto kind = kindOf(node.nodeType))
            told.nodes.push_back(describeNode(parts, node, *kind));
    }
    const Core::DescriptorStoreRO& store = parts.store();
    Plugin::callPlugin([&] {
        told.hardware = store.getHardwareVersion();
        told.deviceFlags = store.getDeviceFlags();
        told.deviceCapabilities = store.getDeviceCapabilities();
    });
    return told;
}

std::vector<Temperature> readTemperatures(CameraParts& parts) {
    const auto node = parts.depth();
    std::vector<Temperature> told;
    attempt("read the temperatures", [&] {
        const auto* labels = dynamic_cast<const Core::NodeLabels*>(&node->store());
        for (const SensorValue& value : (*node)->readTemperatures().values)
            told.push_back(
                {value.sensorId,
                 labels == nullptr ? std::string() : labels->getTemperatureSensorName(value.sensorId),
                 value.value});
    });
    return told;
}

std::optional<Acceleration> readAccelerometer(CameraParts& parts, std::optional<std::uint32_t> place) {
    const auto node = parts.depth();
    std::optional<Acceleration> told;
    attempt("read the accelerometer", [&] {
        const auto* labels = dynamic_cast<const Core::NodeLabels*>(&node->store());
        const auto described = labels == nullptr ? std::nullopt : labels->getAccelerometer();
        if (!place && !described)
            return;
        told = Acceleration{
            place ? std::string() : described->name, place ? *place : described->registerAddress, {}};
        const auto reading = Utils::makeRefcounted<Core::AccelerometerPeriodicOperation>(
            told->registerAddress, std::int64_t{0}, true);
        told->value = (*node)->readAccelerometer(reading.get());
    });
    return told;
}

/// What a camera that refused some values has taken of them all the same.
std::string takenText(const Camera& camera, const ParameterValues& before) {
    std::string taken;
    try {
        for (const ParameterChange& change : changesBetween(before, camera.parameterValues()))
            taken += (taken.empty() ? "" : ", ") + std::to_string(change.number);
    } catch (const Failure&) {
        return "what it has taken of them cannot be read";
    }
    return taken.empty() ? "nothing was changed" : "it has changed all the same: " + taken;
}

template<typename Ask>
auto askDepth(CameraImpl& camera, const std::string& what, Ask question) {
    return camera.real(what).askDepth(what, std::move(question));
}

} // namespace

Camera::Camera(std::shared_ptr<CameraImpl> held) noexcept : impl(std::move(held)) {}
Camera::Camera(const Camera&) noexcept = default;
Camera::Camera(Camera&&) noexcept = default;
Camera& Camera::operator=(const Camera&) noexcept = default;
Camera& Camera::operator=(Camera&&) noexcept = default;
Camera::~Camera() = default;

const CameraInfo& Camera::info() const noexcept { return impl->info(); }

std::vector<Mode> Camera::modes(Kind kind) const { return impl->modes(kind); }

Mode Camera::mode(Kind kind, const std::string& word) const {
    if (word.empty())
        return impl->defaultMode(kind);
    const std::vector<Mode> all = impl->modes(kind);
    for (const Mode& mode : all) {
        if (mode.isCalled(word))
            return mode;
    }
    if (all.empty())
        return impl->defaultMode(kind); // which says that there is none
    throw Failure(Failure::Usage,
                  Format("% has no mode %; it has %") % info().label(kind) % word % listOf(all));
}

StreamInfo Camera::streamInfo(Kind kind, const std::string& word) const {
    return impl->streamInfo(kind, mode(kind, word));
}

Stream Camera::stream(Kind kind, const StreamOptions& options) const {
    Stream made = openStream(impl->streamSetup(kind, mode(kind, options.mode)), options);
    impl->streams().add(made);
    return made;
}

Lens Camera::lens(Kind kind, const std::string& word) const {
    const StreamInfo told = streamInfo(kind, word);
    const std::string owner = told.camera.label() + " in " + told.mode.text();
    if (!told.lens)
        throw Failure(Failure::Failed, "cannot tell the lens of " + owner,
                      "the camera has no lens model of that size");
    return Lens(*told.lens, told.depthAlong, owner);
}

CameraDescription Camera::description() const {
    const std::string what = "find the description of " + info().label();
    return impl->real(what).ask(what, describeCamera);
}

std::optional<ROMElement> Camera::storage() const {
    const std::string what = "find where the storage of " + info().label() + " lies";
    return impl->real(what).ask(what, [](CameraParts& parts) {
        const Core::DescriptorStoreRO& store = parts.store();
        try {
            return std::optional(Plugin::callPlugin([&] { return store.getROMElement(storageROMElement); }));
        } catch (const Plugin::NotSupportedPluginException&) {
            return std::optional<ROMElement>();
        }
    });
}

FirmwareVersion Camera::firmware() const {
    const std::string what = "ask for the firmware's version";
    const auto version = askDepth(*impl, what, [](Core::DepthNodeInterface& depth) {
        FirmwareVersion told;
        depth.getVersions(told.major, told.minor);
        return told;
    });
    if (version.major == 0 && version.minor == 0) // what a node says that has none
        throw Unsupported("cannot " + what, "the camera tells none");
    return version;
}

StereoCameraParametersArray Camera::lensModels() const { return impl->lensModels(); }

Corrections Camera::corrections() const { return impl->corrections(); }

Sources Camera::sources() const { return impl->sources(); }

AccelerationInternal Camera::accelerometerCalibration() const {
    return askDepth(*impl, "ask for the accelerometer's calibration",
                    [](Core::DepthNodeInterface& depth) { return depth.getAccelerometerCalibration(); });
}

std::string Camera::storedSerialNumber() const {
    return askDepth(*impl, "ask for the stored serial number",
                    [](Core::DepthNodeInterface& depth) { return depth.getSerialNumber(); });
}

DiagnosticData Camera::diagnostics() const {
    return askDepth(*impl, "ask how often it was too hot",
                    [](Core::DepthNodeInterface& depth) { return depth.getDiagnosticData(); });
}

float Camera::rangeMetres() const {
    const std::string what = "ask for the range";
    const float metres =
        askDepth(*impl, what, [](Core::DepthNodeInterface& depth) { return depth.getRange(); });
    if (metres == 0) // what a node says that has none
        throw Unsupported("cannot " + what, "the camera tells none");
    return metres;
}

std::vector<int> Camera::parameterNumbers() const {
    const std::string what = "ask for the parameters";
    return impl->real(what).ask(what, [](CameraParts& parts) { return Host::parameterNumbers(parts); });
}

int Camera::parameterNumber(const std::string& word) const {
    const std::string what = "find the parameter '" + word + "'";
    return impl->real(what).ask(what, [word](CameraParts& parts) { return parameterNumbered(parts, word); });
}

std::vector<Parameter> Camera::parameters() const {
    std::vector<Parameter> all;
    for (const int number : parameterNumbers())
        all.push_back(parameter(number));
    return all;
}

Parameter Camera::parameter(int number) const {
    const std::string what = Format("ask about parameter %") % number;
    return impl->real(what).ask(what,
                                [number](CameraParts& parts) { return describeParameter(parts, number); });
}

void Camera::checkParameter(int number, const ParameterValue& value) const {
    const Parameter known = parameter(number);
    const std::string what = Format("cannot set parameter % to %") % number % valueText(value);
    if (value.index() != static_cast<std::size_t>(known.kind))
        throw Failure(Failure::Failed, what, std::string("it is of the kind ") + kindName(known.kind));
    if (!known.isSupported)
        throw Unsupported(what, "the camera has no such parameter");
    if (!known.isWritable)
        throw Failure(Failure::Failed, what, "it can only be read");
    if (!known.accepts(value))
        throw Failure(Failure::Failed, what, "value out of range: " + rangesText(known));
}

void Camera::setParameter(int number, const ParameterValue& value) const {
    checkParameter(number, value);
    const std::string what = Format("set parameter %") % number;
    impl->real(what).ask(what,
                         [number, value](CameraParts& parts) { Host::setParameter(parts, number, value); });
}

ParameterValues Camera::parameterValues() const {
    const std::string what = "read the camera's parameters";
    return impl->real(what).ask(what, [](CameraParts& parts) { return readValues(parts); });
}

void Camera::setParameters(const ParameterValues& values) const {
    for (const auto& [number, value] : values)
        checkParameter(number, value);
    const std::string what = "set the camera's parameters";
    const ParameterValues before = parameterValues();
    try {
        impl->real(what).ask(what, [values](CameraParts& parts) { writeValues(parts, values); });
    } catch (const Failure& failure) {
        throw Failure(failure.code(), failure.message(),
                      failure.cause() + (failure.cause().empty() ? "" : "; ") + takenText(*this, before),
                      failure.remedy());
    }
}

std::vector<Temperature> Camera::temperatures() const {
    const std::string what = "read the temperatures";
    return impl->real(what).ask(what, readTemperatures);
}

std::optional<Acceleration> Camera::accelerometer(std::optional<std::uint32_t> registerAddress) const {
    const std::string what = "read the accelerometer";
    return impl->real(what).ask(
        what, [registerAddress](CameraParts& parts) { return readAccelerometer(parts, registerAddress); });
}

CalibrationInternal Camera::readCalibration() const {
    const std::string what = "read the camera's calibration";
    return impl->real(what).ask(what, [what](CameraParts& parts) {
        CalibrationInternal calibration;
        IO::ParameterInterpreter& camera = parts.parameters();
        attempt(what, [&] { camera.readCalibration(&calibration); });
        return calibration;
    });
}

void Camera::writeCalibration(const CalibrationInternal& calibration) const {
    const std::string what = "write the camera's calibration";
    impl->real(what).ask(what, [what, sent = calibration](CameraParts& parts) mutable {
        IO::ParameterInterpreter& camera = parts.parameters();
        attempt(what, [&] { camera.writeCalibration(&sent); });
    });
    if (readCalibration() != calibration)
        throw Failure(Failure::Verification, "cannot " + what,
                      "the camera does not give back the calibration that was written");
}

std::optional<CalibrationInternal> Camera::appliedCalibration() const {
    const std::string what = "ask for the calibration that is applied";
    return impl->real(what).ask(what, [what](CameraParts& parts) {
        const auto node = parts.depth();
        std::optional<CalibrationInternal> applied;
        attempt(what, [&] {
            const auto modes = (*node)->getConfigurations();
            if (!modes.empty())
                applied = modes.front()->getCalibration();
        });
        return applied;
    });
}

void Camera::reconnectParameters() const {
    const std::string what = "let go of the parameters";
    impl->real(what).ask(what, [](CameraParts& parts) { parts.disconnectParameters(); });
}

IO::CameraChip& Camera::chip(const std::string& controller) const { return *impl->chip(controller); }

IO::VideoDeviceProxy& Camera::device() const { return impl->device(); }

std::vector<ExtensionUnit> Camera::extensionUnits() const {
    const std::string what = "list the extension units of " + info().label();
    return impl->real(what).ask(what, [](CameraParts& parts) {
        parts.chip().openDevice(parts.entry());
        return readExtensionUnits(*parts.chip().device());
    });
}

void Camera::watchTransfers(IO::ChipListener listener) const { impl->watchTransfers(std::move(listener)); }

void Camera::withDepthNode(const std::string& what,
                           std::function<void(Core::DepthNodeInterface&)> work) const {
    impl->real(what).ask(what, [what, work = std::move(work)](CameraParts& parts) {
        const auto node = parts.depth();
        attempt(what, [&] { work(**node); });
    });
}

void Camera::close() const {
    std::optional<Failure> first;
    try {
        impl->streams().stop();
    } catch (const Failure& failure) {
        first = failure;
    }
    impl->close();
    if (first)
        throw Failure(*first);
}

} // namespace Zentara::Host
