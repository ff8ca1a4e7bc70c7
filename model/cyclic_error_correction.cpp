#include <zentara/cyclic_error_correction.h>

#include <cstddef>
#include <string>

#include <zentara/utils/format.h>

#include "model/little_endian.h"
#include "model/log_lines.h"
#include "model/rom_range.h"
#include "utils/log_warning.h"

namespace Zentara {

using Utils::Format;

namespace {

// The block: the algorithms of both modes, their numbers of parameters, then the parameters. The bytes between,
// 2 and 5, are not read.
constexpr std::size_t algorithmOffset = 0;
constexpr std::size_t countOffset = 3;
constexpr std::size_t parameterOffset = 6;
constexpr std::size_t parameterBytes = 4;

void warn(const char* operation, const char* what) {
    Utils::logWarning(std::string("CyclicErrorCorrection::") + operation + ": " + what);
}

constexpr const char* invalidMode = "current mode is not valid";
constexpr const char* badIndex = "parameter index out of range";

} // namespace

// A client that binds a reference to it needs it from the library, and only a constant that is named outside its class
// is exported on every system.
constexpr std::uint32_t CyclicErrorCorrection::MODE_COUNT;

CyclicErrorCorrection::CyclicErrorCorrection() = default;

CyclicErrorCorrection::CyclicErrorCorrection(const void* rom) {
    if (!rom)
        return;
    // The block's length is nowhere told, so its counts are believed: who makes one from bytes of a camera checks them,
    // as cyclicErrorBlock does.
    fromRom = true;
    Model::logInfo("Loading Cyclic Error Correction from the ROM:");
    const auto* block = static_cast<const unsigned char*>(rom);
    const unsigned char* next = block + parameterOffset;
    for (std::uint32_t mode = 0; mode < MODE_COUNT; ++mode) {
        // The line tells the algorithm from before the load, which in a new object is 0.
        Model::logInfo(Format(" - range %: algorithm = %") % mode % modes[mode].algorithm);
        modes[mode].algorithm = static_cast<CorrectionAlgorithm>(block[algorithmOffset + mode]);
        const unsigned int count = block[countOffset + mode];
        for (unsigned int i = 0; i < count; ++i, next += parameterBytes) {
            modes[mode].parameters.push_back(Model::loadLittleEndian<float>(next));
            Model::logInfo(Format("   * parameter[%] = %") % i % modes[mode].parameters.back());
        }
    }
}

bool CyclicErrorCorrection::setCurrentMode(DepthNode::CameraMode mode) {
    if (mode < DepthNode::CameraMode_NONE || mode > DepthNode::CameraMode_1) {
        warn("setCurrentMode", "unknown camera mode");
        return false;
    }
    currentMode = mode;
    return true;
}

DepthNode::CameraMode CyclicErrorCorrection::getCurrentMode() const {
    return static_cast<DepthNode::CameraMode>(currentMode);
}

CorrectionAlgorithm CyclicErrorCorrection::getAlgorithm() const {
    if (currentMode < 0) {
        warn("getAlgorithm", invalidMode);
        return CorrectionAlgorithm_NONE;
    }
    return modes[static_cast<std::size_t>(currentMode)].algorithm;
}

void CyclicErrorCorrection::setAlgorithm(CorrectionAlgorithm newAlgorithm) {
    if (currentMode < 0)
        return warn("setAlgorithm", invalidMode);
    modes[static_cast<std::size_t>(currentMode)].algorithm = newAlgorithm;
}

unsigned int CyclicErrorCorrection::getParameterCount() const {
    if (currentMode < 0) {
        warn("getParameterCount", invalidMode);
        return 0;
    }
    return static_cast<unsigned int>(modes[static_cast<std::size_t>(currentMode)].parameters.size());
}

float CyclicErrorCorrection::getParameter(unsigned int index) const {
    if (currentMode < 0) {
        warn("getParameter", invalidMode);
        return 0;
    }
    const std::vector<float>& parameters = modes[static_cast<std::size_t>(currentMode)].parameters;
    if (index >= parameters.size()) {
        warn("getParameter", badIndex);
        return 0;
    }
    return parameters[index];
}

void CyclicErrorCorrection::setParameter(unsigned int index, float value) {
    if (currentMode < 0)
        return warn("setParameter", invalidMode);
    std::vector<float>& parameters = modes[static_cast<std::size_t>(currentMode)].parameters;
    if (index >= parameters.size())
        return warn("setParameter", badIndex);
    parameters[index] = value;
}

bool CyclicErrorCorrection::comesFromRom() const { return fromRom; }

std::vector<unsigned char> cyclicErrorBlock(unsigned int size, const void* record) {
    if (!record)
        return {};
    const std::optional<Model::RomRange> range =
        Model::parseRomRange(static_cast<const unsigned char*>(record), size);
    if (!range)
        return {};
    // The same parameters for both modes: the flash keeps one record. From big-endian to little-endian on the way.
    const std::size_t count = range->parameters.size();
    std::vector<unsigned char> block(parameterOffset +
                                     CyclicErrorCorrection::MODE_COUNT * count * parameterBytes);
    unsigned char* next = block.data() + parameterOffset;
    for (std::uint32_t mode = 0; mode < CyclicErrorCorrection::MODE_COUNT; ++mode) {
        block[algorithmOffset + mode] = range->algorithm;
        block[countOffset + mode] = static_cast<unsigned char>(count);
        for (std::size_t i = 0; i < count; ++i, next += parameterBytes)
            Model::storeLittleEndian(next, range->parameters[i]);
    }
    return block;
}

} // namespace Zentara
