#include "plugins/cameras/nodes/tof_depth_node.h"

#include <zentara/calibration_internal.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/core/guids.h>
#include <zentara/depth_configuration.h>
#include <zentara/io/library_parameter_interpreter.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/node_event.h>
#include <zentara/utils/format.h>
#include <zentara/utils/kv_logger.h>

#include "plugins/cameras/nodes/attempt.h"
#include "plugins/cameras/nodes/depth_frame.h"
#include "plugins/cameras/nodes/node_commands.h"
#include "plugins/cameras/nodes/parameter_request.h"
#include "plugins/cameras/nodes/sensor_poll.h"
#include "plugins/cameras/nodes/stored_calibration.h"
#include "plugins/cameras/plugin_guids.h"
#include "plugins/descriptions/wire.h"
#include "utils/visible_text.h"

namespace Zentara::Cameras {
namespace {

// Inside the node's own operations "Plugin" is the base class, so the exceptions are named here.
using Mode = Utils::SmartPtr<DepthBaseConfiguration>;
using Utils::Format;
using Zentara::Plugin::ArgumentPluginException;
using Zentara::Plugin::ConfigurationPluginException;
using Zentara::Plugin::InvalidOperationPluginException;
using Zentara::Plugin::IOPluginException;
using Zentara::Plugin::NotSupportedPluginException;
using Zentara::Plugin::PluginException;

using Interpreter = Utils::SmartPtr<IO::LibraryParameterInterpreter>;

Interpreter startParameters(const Core::DescriptorStoreRO& store, IO::VideoDeviceProxy& device) {
    const GUID backEnd = store.getParameterInterpreterGUID();
    if (guidEquals(backEnd, Core::Guids::NULL_IMPL))
        return {};
    Interpreter parameters = IO::LibraryParameterInterpreter::create(backEnd);
    parameters->initialize(device, store.getNodeHardwareIDs(), store.getHardwareVersion());
    return parameters;
}

Mode copyOf(const DepthBaseConfiguration& mode) {
    return Mode(Utils::makeRefcounted<DepthConfiguration>(dynamic_cast<const DepthConfiguration&>(mode)));
}

/// Those of the description; modes of another class are not for this node.
std::vector<Mode> modesOf(const Core::DescriptorStoreRO& store) {
    std::vector<Mode> modes = store.getDepthConfigurations();
    std::erase_if(modes, [](const Mode& mode) {
        return dynamic_cast<const DepthConfiguration*>(mode.get()) == nullptr;
    });
    return modes;
}

/// Depth that counts on another camera's lens is not to pass for better than it is.
void warnOfLens(const std::string& serialNumber, const Core::DescriptorStoreRO& store,
                const std::string& why) {
    Utils::KVLogger* const logger = Utils::KVLogger::instance();
    if (logger == nullptr)
        return;
    logger->warning(
        Format("camera %: %; its lens model is the one in the description of %, which was not measured on "
               "this camera") %
        Utils::visibleText(serialNumber) % Utils::visibleText(why) %
        Utils::visibleText(store.getDeviceName()));
    Utils::KVLogger::release();
}

} // namespace

/// Everything that lives from `initialize` to `dispose`, in an order in which it can be taken apart.
struct TofDepthNode::Camera {
    Camera(const NodeEvent& event, Core::DescriptorStoreRO& description, IO::VideoDeviceProxy& video)
        : serialNumber(event.serialNumber), store(description), device(video), commands(store, device),
          parameters(startParameters(store, device)), known(modesOf(store)),
          calibration(std::make_unique<StoredCalibration>(&store, serialNumber, StoredObjects())) {
        static_cast<void>(commands.chip()); // throws for a camera without a controller
    }

    /// The node's own mode of that name, for its commands.
    [[nodiscard]] Mode find(const Mode& wanted, const char* operation) const {
        if (!wanted)
            throw ArgumentPluginException(Format("%: the configuration is null") % operation);
        for (const Mode& mode : known) {
            if (mode->getName() == wanted->getName())
                return mode;
        }
        throw ConfigurationPluginException(Format("%: the camera has no mode %") % operation %
                                           wanted->getName());
    }

    /// Makes the mode the one that the store tells of.
    void select(const Mode& mode) {
        running = mode;
        store.setConfigurationSettings(mode ? &mode->getCommands() : nullptr);
    }

    IO::LibraryParameterInterpreter& requireParameters(const char* operation) {
        if (!parameters)
            throw NotSupportedPluginException(Format("%: the camera has no parameters") % operation);
        return *parameters;
    }

    const std::string serialNumber;
    Core::DescriptorStoreRO& store;
    IO::VideoDeviceProxy& device;
    NodeCommands commands;
    Interpreter parameters; ///< null for a camera without
    const std::vector<Mode> known;
    std::unique_ptr<StoredCalibration> calibration;
    bool storageRead = false;
    std::string storageTrouble; ///< why it could not be read
    std::string lensTrouble;    ///< why the lens model is not the camera's own; empty if it is
    Mode running;               ///< null while nothing streams
    SensorPoll sensors;
    std::vector<std::uint8_t> delivered = std::vector<std::uint8_t>(largestRawFrame); ///< the reader's alone
};

TofDepthNode::TofDepthNode() : DepthNodeInterface(depthNodeGuid) {}

TofDepthNode::~TofDepthNode() { dispose(); }

void TofDepthNode::initialize(NodeEvent* event, Core::DescriptorStoreRO* store, DepthProcessorData* data) {
    dispose();
    DepthNodeInterface::initialize(event, store, data);
    getAVDeviceProxy()->open();
    camera = std::make_unique<Camera>(*event, *store, *getAVDeviceProxy());
    loadStorage();
}

void TofDepthNode::dispose() {
    if (camera) {
        stop();
        camera->store.setConfigurationSettings(nullptr);
        if (camera->parameters)
            attempt([&] { camera->parameters->dispose(); });
        camera.reset();
    }
    DepthNodeInterface::dispose(); // the device closes with its last reference
}

TofDepthNode::Camera& TofDepthNode::require(const char* operation) const {
    if (!camera)
        throw InvalidOperationPluginException(Format("%: the node is not initialized") % operation);
    return *camera;
}

void TofDepthNode::getVersions(int& majorVersion, int& minorVersion) {
    IO::CameraChip& chip = require("getVersions").commands.chip();
    // A bridge that reports no version says 0; that of the time-of-flight controller stands in for it.
    const std::uint32_t bridge = chip.bridgeVersion();
    const std::uint32_t version = bridge != 0 ? bridge >> 16 : chip.tofVersion();
    majorVersion = static_cast<int>(version >> 8 & 0xFF);
    minorVersion = static_cast<int>(version & 0xFF);
}

void TofDepthNode::configurePeriodicOperations(
    std::vector<Utils::SmartPtr<Core::PeriodicOperation>> operations) {
    require("configurePeriodicOperations").sensors.configure(std::move(operations));
}

void TofDepthNode::enableStreaming(Mode configuration) {
    Camera& present = require("enableStreaming");
    if (present.running)
        throw InvalidOperationPluginException("enableStreaming: the node streams already; disable it first");
    const Mode mode = present.find(configuration, "enableStreaming");
    // Chosen before the device starts, which may ask the store for it; and counted as running before that, so that a
    // start that failed halfway is stopped.
    present.select(mode);
    try {
        present.commands.start(&mode->getCommands());
        present.device.enableStreaming(mode);
    } catch (...) {
        stop();
        throw;
    }
}

void TofDepthNode::disableStreaming() {
    Camera& present = require("disableStreaming");
    if (!present.running)
        return;
    // A device that does not stop leaves the node streaming, so that it can be told again.
    present.device.disableStreaming(false);
    present.select({});
    present.commands.stop();
}

/// What a stream needs to end, as far as the camera takes it.
void TofDepthNode::stop() noexcept {
    if (!camera->running)
        return;
    attempt([&] { camera->device.disableStreaming(false); });
    attempt([&] { camera->commands.stop(); });
    attempt([&] { camera->select({}); });
}

void TofDepthNode::setIlluminationLevel(DepthNode::CameraMode /*mode*/, int level) {
    require("setIlluminationLevel")
        .requireParameters("setIlluminationLevel")
        .write(ParameterType_FLOAT_0, static_cast<float>(level));
}

void TofDepthNode::setConfiguration(Mode configuration) {
    Camera& present = require("setConfiguration");
    if (!present.running)
        throw InvalidOperationPluginException("setConfiguration: the node does not stream");
    const Mode mode = present.find(configuration, "setConfiguration");
    // Commands alone change the mode: the device goes on with the frames that it was started with.
    if (mode->getFrameFormat() != present.running->getFrameFormat() ||
        mode->getFramerate() != present.running->getFramerate())
        throw ConfigurationPluginException(
            Format("setConfiguration: % has other frames than %; stop the stream first") % mode->getName() %
            present.running->getName());
    present.commands.change(&mode->getCommands());
    present.select(mode);
}

void TofDepthNode::setCalibration(CalibrationInternal* calibration) {
    require("setCalibration").requireParameters("setCalibration").writeCalibration(calibration);
}

float TofDepthNode::getPhaseScaling() {
    Camera& present = require("getPhaseScaling");
    return present.parameters ? present.parameters->getPhaseScaling() : DepthNodeInterface::getPhaseScaling();
}

void TofDepthNode::process(Utils::SmartPtr<IO::xuRequest> request) {
    Camera& present = require("process");
    if (!request)
        throw ArgumentPluginException("process: the request is null");
    if (!present.parameters || !writeParameter(*present.parameters, *request))
        present.commands.chip().wire().processCommand(request);
}

void TofDepthNode::setDiagnosticData(DiagnosticData data) {
    require("setDiagnosticData").calibration->setDiagnosticData(data);
}

SensorValueArray TofDepthNode::readTemperatures() {
    Camera& present = require("readTemperatures");
    const SensorValueArray readings =
        present.running ? present.sensors.temperatures() : SensorValueArray(); // else they are old
    return readings.empty() ? readTemperatureSensors(present.commands.chip()) : readings;
}

AccelerationInternal TofDepthNode::readAccelerometer(Core::AccelerometerPeriodicOperation* operation) {
    Camera& present = require("readAccelerometer");
    if (operation == nullptr)
        throw ArgumentPluginException("readAccelerometer: the operation is null");
    AccelerationInternal polled;
    if (present.running && present.sensors.acceleration(*operation, polled))
        return polled;
    return readAccelerationSensor(present.commands.chip(), operation->getRegAddress());
}

SensorValueArray TofDepthNode::readTemperature(Core::TemperaturePeriodicOperation* operation) {
    Camera& present = require("readTemperature");
    if (operation == nullptr)
        throw ArgumentPluginException("readTemperature: the operation is null");
    return readTemperatureSensor(present.commands.chip(), operation->getRegAddress());
}

float TofDepthNode::getRange() {
    Camera& present = require("getRange");
    return present.parameters ? present.parameters->getRange() : DepthNodeInterface::getRange();
}

FrameFormat TofDepthNode::getDVPFrameMode() { return FrameFormat_QVGA; }

StereoCameraParametersArray TofDepthNode::getImageRegistrationCalibration() {
    return require("getImageRegistrationCalibration").calibration->lenses();
}

SensorValueArray TofDepthNode::getTemperatureCalibration(DepthNode::CameraMode mode) {
    return require("getTemperatureCalibration").calibration->getTemperatureCalibration(mode);
}

TemperatureCalibration TofDepthNode::getTemperatureCalibration() {
    return require("getTemperatureCalibration").calibration->getTemperatureCalibration();
}

TemperatureCompensation TofDepthNode::getTemperatureCompensation() {
    return require("getTemperatureCompensation").calibration->getTemperatureCompensation();
}

CyclicErrorCorrection TofDepthNode::getCyclicErrorCorrection() {
    return require("getCyclicErrorCorrection").calibration->cyclicErrorCorrection();
}

DiagnosticData TofDepthNode::getDiagnosticData() {
    return require("getDiagnosticData").calibration->getDiagnosticData();
}

std::string TofDepthNode::getSerialNumber() {
    return require("getSerialNumber").calibration->getSerialNumber();
}

AccelerationInternal TofDepthNode::getAccelerometerCalibration() {
    return require("getAccelerometerCalibration").calibration->getAccelerometerCalibration();
}

void TofDepthNode::reloadROMLayout(bool force) {
    if (force || !require("reloadROMLayout").storageRead)
        loadStorage();
}

Core::CalibrationSource TofDepthNode::getCalibrationSource(Core::CalibrationPart part) const {
    const Camera& present = require("getCalibrationSource");
    const StoredCalibration& known = *present.calibration;
    const auto sourceOf = [&](bool isStored, bool isDescribed) {
        if (isStored)
            return Core::CalibrationSource::Camera;
        if (!present.storageRead)
            return Core::CalibrationSource::Failure;
        return isDescribed ? Core::CalibrationSource::Description : Core::CalibrationSource::None;
    };
    switch (part) {
    case Core::CalibrationPart::Lens:
        return sourceOf(known.holdsLens(), !known.lenses().depthIntrinsics.values.empty());
    case Core::CalibrationPart::Extrinsics:
        return sourceOf(known.holdsExtrinsics(), !known.lenses().extrinsics.values.empty());
    case Core::CalibrationPart::Corrections:
        return sourceOf(known.holdsCorrections(), true);
    case Core::CalibrationPart::Accelerometer:
        return sourceOf(known.hasAccelerometerCalibration(), false);
    case Core::CalibrationPart::SerialNumber: // the bus told it
        return known.hasSerialNumber() ? Core::CalibrationSource::Camera : Core::CalibrationSource::None;
    }
    return Core::CalibrationSource::None;
}

std::string TofDepthNode::getCalibrationFailure() const {
    return require("getCalibrationFailure").storageTrouble;
}

/// A storage that cannot be read leaves the description's defaults.
void TofDepthNode::loadStorage() {
    Camera& present = require("reloadROMLayout");
    StoredObjects objects;
    std::string trouble;
    present.storageRead = false;
    present.storageTrouble.clear();
    try {
        objects = readStorage(present.commands.chip(), present.store.getROMElement(storageROMElement));
        present.storageRead = true;
        if (!objects.calibration || objects.calibration->getDepthIntrinsics().empty())
            trouble = "its flash holds no lens model";
    } catch (const PluginException& failure) {
        present.storageTrouble = failure.message();
        trouble = Format("its flash cannot be read (%)") % failure.message();
    }
    present.calibration = std::make_unique<StoredCalibration>(&present.store, present.serialNumber, objects);
    if (!trouble.empty() && trouble != present.lensTrouble) // the same is told once
        warnOfLens(present.serialNumber, present.store, trouble);
    present.lensTrouble = std::move(trouble);
}

std::vector<Mode> TofDepthNode::getConfigurations() {
    Camera& present = require("getConfigurations");
    std::vector<Mode> modes;
    for (const Mode& described : present.known) {
        const Mode mode = copyOf(*described);
        modes.push_back(mode);
        mode->setCalibrationHardwareVersion(present.store.getHardwareVersion());
        if (!present.calibration->hasPhaseDelay())
            continue; // the description's stays
        CalibrationInternal calibration(present.calibration->getPhaseDelay(mode),
                                        mode->getCalibration().getDriftCompensation());
        calibration.setPhaseDelay2(present.calibration->phaseOffset(DepthNode::CameraMode_1));
        mode->setCalibration(calibration);
    }
    return modes;
}

ReadBufferStatus TofDepthNode::readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) {
    Camera& present = require("readBuffer");
    if (buffer == nullptr || timestamp == nullptr || length == nullptr)
        throw ArgumentPluginException("readBuffer: a pointer is null");
    *length = static_cast<int>(depthFrameBytes);
    if (size < *length)
        return ReadBufferStatus_TOO_SMALL;
    int bytes = 0;
    const ReadBufferStatus status = present.device.readBuffer(
        present.delivered.data(), static_cast<int>(present.delivered.size()), timestamp, &bytes);
    // The caller's buffer suffices: it is the camera whose frames are too long.
    if (status != ReadBufferStatus_OK && status != ReadBufferStatus_TOO_SMALL)
        return status;
    if (status == ReadBufferStatus_TOO_SMALL ||
        !makeDepthFrame(present.delivered.data(), static_cast<std::size_t>(bytes),
                        static_cast<std::uint8_t*>(buffer)))
        throw IOPluginException(Format("readBuffer: % bytes from the camera are no frame") % bytes);
    // On the reader's thread, between two frames.
    present.sensors.poll(present.commands.chip(), *timestamp);
    return ReadBufferStatus_OK;
}

} // namespace Zentara::Cameras
