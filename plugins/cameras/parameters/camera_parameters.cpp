#include "plugins/cameras/parameters/camera_parameters.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <utility>

#include <zentara/calibration_internal.h>
#include <zentara/io/parameter_interpreter.h>
#include <zentara/parameter_range.h>
#include <zentara/rom/accessor.h>
#include <zentara/rom/chunked_memory_manager.h>
#include <zentara/rom/configuration.h>
#include <zentara/rom/container.h>
#include <zentara/rom/rom.h>
#include <zentara/utils/format.h>

#include "model/little_endian.h"
#include "plugins/descriptions/wire.h"

namespace Zentara::Cameras {

using Model::loadLittleEndian;
using Model::storeLittleEndian;
using Utils::Format;
using Utils::makeRefcounted;
using Bytes = std::vector<std::uint8_t>;

namespace {

constexpr double speedOfLight = 299'792'458; // metres a second
constexpr double phaseSteps = 65536;
constexpr std::size_t wordBytes = 2;
constexpr std::uint32_t storageBytes = 0x4000;
constexpr std::uint32_t usualChunkBytes = 256; // a formatted storage knows its own

[[noreturn]] void refuse(const Parameter& parameter, double value) {
    const std::string accepted =
        parameter.choices.empty()
            ? std::string(Format("% to %") % parameter.minimum % parameter.maximum)
            : std::string(Format("one of % values from % to %") % parameter.choices.size() %
                          parameter.minimum % parameter.maximum);
    throw Failure(ErrorCode_OUT_OF_RANGE, Format("% takes %, not %") % parameter.name % accepted % value);
}

bool isChoice(const Parameter& parameter, double value) {
    return parameter.choices.empty() ||
           std::find(parameter.choices.begin(), parameter.choices.end(), value) != parameter.choices.end();
}

/// The multiple of the step that stands for a value; refuses values that the parameter does not take.
std::uint16_t encode(const Parameter& parameter, double value) {
    // Values come as floats, so a bound such as 0.1 may miss itself by a little.
    const double tolerance = parameter.step / 1000;
    const bool inRange = value >= parameter.minimum - tolerance && value <= parameter.maximum + tolerance;
    if (!inRange || !isChoice(parameter, value))
        refuse(parameter, value);
    return static_cast<std::uint16_t>(std::lround(value / parameter.step));
}

void checkRegion(const RegionOfInterestInternal& region) {
    const bool fits = region.width > 0 && region.height > 0 && region.width <= frameWidth &&
                      region.height <= frameHeight && region.x <= frameWidth - region.width &&
                      region.y <= frameHeight - region.height;
    if (!fits)
        throw Failure(ErrorCode_OUT_OF_RANGE,
                      Format("a region of % x % at %, % does not fit a sensor of % x %") % region.width %
                          region.height % region.x % region.y % frameWidth % frameHeight);
}

void requireAccess(const Parameter& parameter, AccessMode access) {
    if (!(parameter.access & access))
        throw Failure(ErrorCode_NOT_SUPPORTED, std::string(parameter.name) + " is read-only");
}

std::size_t valueBytes(ParameterValueType type) {
    switch (type) {
    case ParameterValueType_BOOL:
        return 1;
    case ParameterValueType_REGION_OF_INTEREST:
        return 4 * wordBytes;
    default:
        return sizeof(std::uint32_t);
    }
}

RegionOfInterestInternal loadRegion(const std::uint8_t* bytes) {
    const auto at = [bytes](std::size_t i) { return loadLittleEndian<std::uint16_t>(bytes + wordBytes * i); };
    return {at(0), at(1), at(2), at(3)};
}

void storeRegion(std::uint8_t* bytes, const RegionOfInterestInternal& region) {
    for (const std::uint32_t value : {region.x, region.y, region.width, region.height}) {
        storeLittleEndian(bytes, static_cast<std::uint16_t>(value));
        bytes += wordBytes;
    }
}

double loadValue(ParameterValueType type, const std::uint8_t* bytes) {
    if (type == ParameterValueType_FLOAT)
        return loadLittleEndian<float>(bytes);
    return type == ParameterValueType_BOOL ? static_cast<double>(*bytes != 0)
                                           : loadLittleEndian<std::int32_t>(bytes);
}

void storeValue(ParameterValueType type, std::uint8_t* bytes, double value) {
    if (type == ParameterValueType_FLOAT)
        storeLittleEndian(bytes, static_cast<float>(value));
    else if (type == ParameterValueType_BOOL)
        *bytes = value != 0 ? 0xFF : 0;
    else
        storeLittleEndian(bytes, static_cast<std::int32_t>(value));
}

/// Calls `visit` with each entry's parameter and where its value lies.
template<typename Byte>
void visitState(Byte* state, std::size_t size, const std::function<void(const Parameter&, Byte*)>& visit) {
    for (std::size_t position = 0; position < size;) {
        const Parameter& parameter = CameraParameters::parameter(static_cast<ParameterType>(state[position]));
        const std::size_t length = valueBytes(parameter.type);
        if (length > size - position - 1)
            throw Failure(ErrorCode_FAILED, Format("the entry of % is cut short") % parameter.name);
        visit(parameter, state + position + 1);
        position += 1 + length;
    }
}

Bytes marshal(const ParameterRangeBaseInternal& range) {
    unsigned int size = 0;
    range.marshal(nullptr, &size); // how many bytes it takes
    Bytes bytes(size);
    range.marshal(bytes.data(), &size);
    return bytes;
}

template<typename T>
Bytes numberRange(const Parameter& parameter) {
    if (!parameter.choices.empty())
        return marshal(*makeRefcounted<ParameterDiscreteSetInternal<T>>(
            std::vector<T>(parameter.choices.begin(), parameter.choices.end())));
    return marshal(*makeRefcounted<ParameterRangeInternal<T>>(static_cast<T>(parameter.minimum),
                                                              static_cast<T>(parameter.maximum),
                                                              static_cast<T>(parameter.step)));
}

Bytes regionRange() {
    const auto upTo = [](std::uint32_t first, std::uint32_t last) {
        return new ParameterRangeInternal<int>(static_cast<int>(first), static_cast<int>(last), 1);
    };
    return marshal(*makeRefcounted<RegionOfInterestRangeInternal>(
        upTo(0, frameWidth - 1), upTo(0, frameHeight - 1), upTo(1, frameWidth), upTo(1, frameHeight)));
}

/// The camera's flash, for reading.
class Flash final : public ROM::Accessor {
public:
    explicit Flash(IO::TofRegisters& way) : registers(way) {}

    Bytes read(std::uint32_t address, std::uint32_t length) override {
        return length == 0 ? Bytes() : registers.readConfiguration(address, length);
    }
    void write(std::uint32_t, const Bytes&) override {
        throw Failure(ErrorCode_NOT_SUPPORTED, "the parameter back-end does not write to the camera's flash");
    }

private:
    IO::TofRegisters& registers;
};

/// What the camera's flash holds of a calibration; of several configurations the one with the lowest number.
Bytes storedCalibration(IO::TofRegisters& registers) {
    CalibrationInternal calibration;
    Flash flash(registers);
    ROM::ChunkedMemoryManager memory(&flash, 0, storageBytes, usualChunkBytes, true);
    ROM::Container container(&memory);
    ROM::ROM rom(&container);
    rom.initialize();
    if (rom.romInitialized()) {
        for (const std::uint16_t uid : rom.getUIDs()) {
            const std::unique_ptr<const ROM::Object> object(rom.get(uid));
            if (const auto* stored = dynamic_cast<const ROM::Configuration*>(object.get())) {
                calibration.setPhaseDelay(stored->getPhaseOffset().getPhaseOffset());
                calibration.setPhaseDelay2(stored->getPhaseOffset2().getPhaseOffset());
                break;
            }
        }
    }
    unsigned int size = 0;
    calibration.marshal(nullptr, &size); // how many bytes it takes
    Bytes bytes(size);
    calibration.marshal(bytes.data(), &size);
    return bytes;
}

} // namespace

CameraParameters::CameraParameters(const IO::BackEndWay& way, const HardwareVersionInternal& version)
    : registers(IO::TofRegisters::find(version, way)) {
    // The signature stands in a register as the values do, and is gone when they are.
    if (registers->read(signatureRegister) != signature)
        start();
}

void CameraParameters::start() {
    for (const Parameter& known : allParameters()) {
        if (known.step != 0)
            registers->write(registerOf(known.number), encode(known, known.start));
    }
    writeRegion({0, 0, frameWidth, frameHeight});
    // Last: a start that was interrupted begins anew.
    registers->write(signatureRegister, signature);
}

const Parameter& CameraParameters::parameter(ParameterType number) {
    if (const Parameter* const known = findParameter(number))
        return *known;
    throw Failure(ErrorCode_NOT_SUPPORTED, Format("the camera has no parameter %") % number);
}

const Parameter& CameraParameters::parameter(ParameterType number, ParameterValueType type) {
    const Parameter& known = parameter(number);
    if (known.type != type)
        throw Failure(ErrorCode_NOT_SUPPORTED, std::string(known.name) + " is of another type");
    return known;
}

double CameraParameters::read(const Parameter& known) {
    if (known.number == ParameterType_RANGE)
        return unambiguousRange();
    return registers->read(registerOf(known.number)) * known.step;
}

/// In metres. The register may hold what nobody wrote as a parameter.
double CameraParameters::unambiguousRange() {
    const double megahertz = read(parameter(ParameterType_FLOAT_2));
    if (megahertz == 0)
        throw Failure(ErrorCode_FAILED, "without a modulation frequency there is no range");
    // Half a wavelength: the light goes there and back.
    return speedOfLight / (2e6 * megahertz);
}

void CameraParameters::write(const Parameter& known, double value) {
    requireAccess(known, AccessMode_WRITE);
    registers->write(registerOf(known.number), encode(known, value));
}

RegionOfInterestInternal CameraParameters::readRegion() {
    constexpr std::uint8_t first = registerOf(ParameterType_REGION_OF_INTEREST);
    return {registers->read(first), registers->read(first + 1), registers->read(first + 2),
            registers->read(first + 3)};
}

void CameraParameters::writeRegion(const RegionOfInterestInternal& region) {
    checkRegion(region);
    std::uint8_t address = registerOf(ParameterType_REGION_OF_INTEREST);
    for (const std::uint32_t value : {region.x, region.y, region.width, region.height})
        registers->write(address++, static_cast<std::uint16_t>(value));
}

void CameraParameters::readState(Bytes& state) {
    visitState<std::uint8_t>(state.data(), state.size(), [this](const Parameter& known, std::uint8_t* value) {
        if (known.type == ParameterValueType_REGION_OF_INTEREST)
            storeRegion(value, readRegion());
        else
            storeValue(known.type, value, read(known));
    });
}

void CameraParameters::writeState(const Bytes& state) {
    // A state that was read is written back whole, so read-only values in it are skipped.
    const auto visit = [&state](const std::function<void(const Parameter&, const std::uint8_t*)>& action) {
        visitState<const std::uint8_t>(state.data(), state.size(),
                                       [&action](const Parameter& known, const std::uint8_t* value) {
                                           if (known.access & AccessMode_WRITE)
                                               action(known, value);
                                       });
    };
    // All are checked before the first is written: a state that is refused changes nothing.
    visit([](const Parameter& known, const std::uint8_t* value) {
        if (known.type == ParameterValueType_REGION_OF_INTEREST)
            checkRegion(loadRegion(value));
        else
            static_cast<void>(encode(known, loadValue(known.type, value)));
    });
    visit([this](const Parameter& known, const std::uint8_t* value) {
        if (known.type == ParameterValueType_REGION_OF_INTEREST)
            writeRegion(loadRegion(value));
        else
            write(known, loadValue(known.type, value));
    });
}

Bytes CameraParameters::range(const Parameter& known) {
    switch (known.type) {
    case ParameterValueType_FLOAT:
        return numberRange<float>(known);
    case ParameterValueType_INT:
        return numberRange<int>(known);
    case ParameterValueType_REGION_OF_INTEREST:
        return regionRange();
    default:
        throw Failure(ErrorCode_NOT_SUPPORTED, std::string(known.name) + " has no range");
    }
}

const Bytes& CameraParameters::readCalibration() {
    if (!calibration)
        calibration = storedCalibration(*registers);
    return *calibration;
}

void CameraParameters::writeCalibration(Bytes bytes) {
    CalibrationInternal checked;
    const std::uint8_t none = 0;
    if (checked.unmarshal(bytes.empty() ? &none : bytes.data(), static_cast<unsigned int>(bytes.size())) != 0)
        throw Failure(ErrorCode_FAILED, Format("% bytes are no calibration") % bytes.size());
    calibration = std::move(bytes);
}

double CameraParameters::phaseScaling() { return read(parameter(ParameterType_RANGE)) * 1000 / phaseSteps; }

} // namespace Zentara::Cameras
