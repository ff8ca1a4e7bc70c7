#include <zentara/io/base_rom_layout.h>

#include <utility>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/io/calibration_data.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::IO {

namespace {

/// Asks a store; one that does not support the question has no answer.
template<typename Question>
bool ask(Question question) {
    try {
        return Plugin::callPlugin(question);
    } catch (const Plugin::NotSupportedPluginException&) {
        return false;
    }
}

} // namespace

/// What is not there is empty or 0; whether it is there, the flags say.
struct BaseROMLayout::Impl {
    Core::DescriptorStoreRO* store = nullptr; ///< not owned
    std::string productionId;
    std::string serialNumber;
    StereoCameraParametersArray imageRegistration; ///< its three counts start at 1, beside empty lists
    AccelerationInternal accelerometer;
    CalibrationData phaseDelays{0, 0};
    TemperatureCalibration temperatureCalibration;
    TemperatureCompensation temperatureCompensation;
    DiagnosticData diagnostics;
    bool hasPhaseDelay = false;
    bool hasAccelerometerCalibration = false;
    bool hasImageRegistrationCalibration = false;
    bool hasSerialNumber = false;
    bool hasProductionId = false;
    bool hasTemperatureCalibration = false;

    void readStore();
};

void BaseROMLayout::Impl::readStore() {
    for (const auto mode : {DepthNode::CameraMode_0, DepthNode::CameraMode_1}) {
        // What a store without an answer has left here is not used.
        SensorValueArray values;
        if (ask([&] { return store->getTemperatureCalibration(mode, values); })) {
            temperatureCalibration.modes[mode] = std::move(values);
            hasTemperatureCalibration = true;
        }
    }
    float coefficient = 0;
    int sensorId = -1;
    if (ask([&] { return store->getTemperatureCompensation(coefficient, sensorId); }))
        temperatureCompensation = TemperatureCompensation(coefficient, sensorId);
}

BaseROMLayout::BaseROMLayout(Core::DescriptorStoreRO* store) : impl(std::make_unique<Impl>()) {
    impl->store = store;
    if (store)
        impl->readStore();
}

BaseROMLayout::BaseROMLayout(const BaseROMLayout& other) : impl(std::make_unique<Impl>(*other.impl)) {}

BaseROMLayout& BaseROMLayout::operator=(const BaseROMLayout& other) {
    *impl = *other.impl;
    return *this;
}

BaseROMLayout::~BaseROMLayout() = default;

void BaseROMLayout::setDiagnosticData(DiagnosticData /*data*/) {}

bool BaseROMLayout::hasPhaseDelay() const { return impl->hasPhaseDelay; }

bool BaseROMLayout::hasAccelerometerCalibration() const { return impl->hasAccelerometerCalibration; }

bool BaseROMLayout::hasImageRegistrationCalibration() const { return impl->hasImageRegistrationCalibration; }

bool BaseROMLayout::hasSerialNumber() const { return impl->hasSerialNumber; }

bool BaseROMLayout::hasProductionID() const { return impl->hasProductionId; }

bool BaseROMLayout::hasTemperatureCalibration() const { return impl->hasTemperatureCalibration; }

short BaseROMLayout::getPhaseDelay(Utils::SmartPtr<DepthBaseConfiguration> configuration) const {
    return impl->phaseDelays.getPhaseDelay(configuration);
}

AccelerationInternal BaseROMLayout::getAccelerometerCalibration() const { return impl->accelerometer; }

StereoCameraParametersArray BaseROMLayout::getImageRegistrationCalibration() const {
    return impl->imageRegistration;
}

TemperatureCalibration BaseROMLayout::getTemperatureCalibration() const {
    return impl->temperatureCalibration;
}

SensorValueArray BaseROMLayout::getTemperatureCalibration(DepthNode::CameraMode mode) const {
    return impl->temperatureCalibration.get(mode);
}

TemperatureCompensation BaseROMLayout::getTemperatureCompensation() const {
    return impl->temperatureCompensation;
}

DiagnosticData BaseROMLayout::getDiagnosticData() const { return impl->diagnostics; }

std::string BaseROMLayout::getSerialNumber() const { return impl->serialNumber; }

std::string BaseROMLayout::getProductionID() const { return impl->productionId; }

void BaseROMLayout::setPhaseDelays(const CalibrationData& delays) {
    impl->phaseDelays = delays;
    impl->hasPhaseDelay = true;
}

void BaseROMLayout::setAccelerometerCalibration(const AccelerationInternal& calibration) {
    impl->accelerometer = calibration;
    impl->hasAccelerometerCalibration = true;
}

void BaseROMLayout::setImageRegistrationCalibration(const StereoCameraParametersArray& parameters) {
    impl->imageRegistration = parameters;
    impl->hasImageRegistrationCalibration = true;
}

void BaseROMLayout::setTemperatureCalibration(const TemperatureCalibration& calibration) {
    impl->temperatureCalibration = calibration;
    impl->hasTemperatureCalibration = true;
}

void BaseROMLayout::setSerialNumber(const std::string& number) {
    impl->serialNumber = number;
    impl->hasSerialNumber = true;
}

void BaseROMLayout::setProductionID(const std::string& id) {
    impl->productionId = id;
    impl->hasProductionId = true;
}

void BaseROMLayout::setTemperatureCompensation(const TemperatureCompensation& compensation) {
    impl->temperatureCompensation = compensation;
}

void BaseROMLayout::storeDiagnosticData(DiagnosticData data) { impl->diagnostics = data; }

Core::DescriptorStoreRO* BaseROMLayout::getDescriptorStore() const { return impl->store; }

} // namespace Zentara::IO
