#include <zentara/temperature_compensation.h>

#include <utility>

#include <zentara/utils/format.h>

#include "model/log_lines.h"
#include "model/rom_range.h"
#include "utils/log_warning.h"

namespace Zentara {

using Utils::Format;

namespace {

constexpr std::size_t modeCount = 2;

void warn(const char* what) { Utils::logWarning(std::string("TemperatureCompensation: ") + what); }

} // namespace

TemperatureCompensation::TemperatureCompensation() = default;

TemperatureCompensation::TemperatureCompensation(const void* data) {
    if (data) {
        // The range itself says how long it is.
        const unsigned int count = static_cast<const unsigned char*>(data)[1];
        init(Model::RomRange::headerBytes + Model::RomRange::parameterBytes * count, data);
    }
}

TemperatureCompensation::TemperatureCompensation(unsigned int size, const void* data) {
    if (data)
        init(size, data);
}

TemperatureCompensation::TemperatureCompensation(float parameter, int sensorId)
    : records(modeCount, Record{CompensationAlgorithm_LINEAR, {parameter}, {sensorId}}) {}

void TemperatureCompensation::init(unsigned int size, const void* data) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    while (size > 0 && records.size() < modeCount) {
        std::optional<Model::RomRange> range = Model::parseRomRange(bytes, size);
        if (!range) {
            warn("range in the ROM is cut short");
            break;
        }
        bytes += range->size();
        size -= range->size();
        // The sensors are not in the ROM; setSensorIDs names them.
        records.push_back(
            {static_cast<CompensationAlgorithm>(range->algorithm), std::move(range->parameters), {}});
    }
    fromRom = !records.empty();
    if (fromRom)
        logRecords();
}

void TemperatureCompensation::logRecords() const {
    Model::logInfo("temperature compensation data loaded from ROM");
    for (std::size_t mode = 0; mode < records.size(); ++mode) {
        Model::logInfo(Format("- range %: algorithm = %") % mode % records[mode].algorithm);
        for (std::size_t i = 0; i < records[mode].parameters.size(); ++i)
            Model::logInfo(Format("* parameter[%] = %") % i % records[mode].parameters[i]);
    }
}

bool TemperatureCompensation::setCurrentMode(DepthNode::CameraMode mode) {
    // Compared signed: -1, no mode, lies below every number of records.
    const bool known = mode >= DepthNode::CameraMode_NONE && mode <= DepthNode::CameraMode_1;
    if (!known || mode >= static_cast<std::int32_t>(records.size())) {
        warn("cannot set current mode: unsupported camera mode");
        return false;
    }
    currentMode = mode;
    return true;
}

DepthNode::CameraMode TemperatureCompensation::getCurrentMode() const {
    return static_cast<DepthNode::CameraMode>(currentMode);
}

const TemperatureCompensation::Record* TemperatureCompensation::currentRecord(const char* what) const {
    if (currentMode >= 0)
        return &records[static_cast<std::size_t>(currentMode)];
    warn((std::string("cannot get ") + what + ": current mode is not valid").c_str());
    return nullptr;
}

TemperatureCompensation::CompensationAlgorithm TemperatureCompensation::getAlgorithm() const {
    const Record* record = currentRecord("algorithm");
    return record ? record->algorithm : CompensationAlgorithm{};
}

unsigned int TemperatureCompensation::getParameterCount() const {
    const Record* record = currentRecord("parameter count");
    return record ? static_cast<unsigned int>(record->parameters.size()) : 0;
}

float TemperatureCompensation::getParameter(unsigned int index) const {
    const Record* record = currentRecord("parameter");
    if (!record)
        return 0;
    if (index < record->parameters.size())
        return record->parameters[index];
    warn("parameter index out of range");
    return 0;
}

unsigned int TemperatureCompensation::getSensorIDCount() const {
    const Record* record = currentRecord("sensor ID count");
    return record ? static_cast<unsigned int>(record->sensorIds.size()) : 0;
}

int TemperatureCompensation::getSensorID(unsigned int index) const {
    const Record* record = currentRecord("sensor ID");
    if (!record)
        return -1;
    if (index < record->sensorIds.size())
        return record->sensorIds[index];
    warn("sensor ID index out of range");
    return -1;
}

bool TemperatureCompensation::setSensorIDs(DepthNode::CameraMode mode, std::vector<int> ids) {
    if (mode != DepthNode::CameraMode_0 && mode != DepthNode::CameraMode_1) {
        warn("cannot set sensor IDs: unknown camera mode");
        return false;
    }
    if (static_cast<std::size_t>(mode) >= records.size()) {
        warn("cannot set sensor IDs: unsupported camera mode");
        return false;
    }
    records[static_cast<std::size_t>(mode)].sensorIds = std::move(ids);
    return true;
}

bool TemperatureCompensation::setTemperatureCalibration(const TemperatureCalibration& newCalibration) {
    calibration = newCalibration;
    return true;
}

const TemperatureCalibration& TemperatureCompensation::getTemperatureCalibration() const {
    return calibration;
}

bool TemperatureCompensation::comesFromRom() const { return fromRom; }

} // namespace Zentara
