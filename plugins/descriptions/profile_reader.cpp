#include "plugins/descriptions/profile_reader.h"

#include <limits>
#include <utility>

#include <zentara/utils/format.h>

#include "plugins/descriptions/command_reader.h"

namespace Zentara::Cameras {
namespace {

using Utils::Format;
using Utils::makeRefcounted;

constexpr std::uint64_t anyWord = std::numeric_limits<std::uint64_t>::max();
constexpr std::size_t cameraModes = 2;
constexpr std::uint64_t memoryBytes = 0x10000; // of every controller

float numberOr0(JsonFields& fields, const char* name) {
    const auto field = fields.find(name);
    return field ? field->number() : 0.0F;
}

std::int32_t sensorId(JsonFields& fields) {
    return static_cast<std::int32_t>(fields.need("sensorId").whole(0, 0xFF));
}

FourCC readPixelFormat(const JsonValue& value) {
    JsonFields fields(value);
    const JsonValue name = fields.need("fourCC");
    const std::string code = name.text();
    if (code.size() != 4)
        name.fail(Format("must have four characters, not '%'") % code);
    FourCC format;
    format.code = fourCCCode(code[0], code[1], code[2], code[3]);
    format.bitsPerPixel = static_cast<std::uint8_t>(fields.need("bitsPerPixel").whole(0, 255));
    format.bytesPerLine = fields.need("bytesPerLine").word();
    fields.finish();
    return format;
}

RegionOfInterestInternal readRegion(const JsonValue& value) {
    JsonFields fields(value);
    RegionOfInterestInternal region;
    region.x = fields.need("x").word();
    region.y = fields.need("y").word();
    region.width = fields.need("width").word();
    region.height = fields.need("height").word();
    fields.finish();
    return region;
}

std::unordered_map<std::uint64_t, ROMElement> readRomElements(const JsonValue& list) {
    std::unordered_map<std::uint64_t, ROMElement> elements;
    for (const JsonValue& value : list.list()) {
        JsonFields fields(value);
        const JsonValue id = fields.need("id");
        ROMElement element;
        element.address = static_cast<std::uint32_t>(fields.need("address").whole(0, memoryBytes));
        element.size =
            static_cast<std::uint32_t>(fields.need("size").whole(0, memoryBytes - element.address));
        if (!elements.emplace(id.whole(0, anyWord), element).second)
            id.fail("stands there twice");
        fields.finish();
    }
    return elements;
}

std::vector<CameraIntrinsics> readIntrinsics(const JsonValue& list) {
    std::vector<CameraIntrinsics> models;
    for (const JsonValue& value : list.list()) {
        JsonFields fields(value);
        CameraIntrinsics model;
        model.width = static_cast<std::uint16_t>(fields.need("width").whole(1, 0xFFFF));
        model.height = static_cast<std::uint16_t>(fields.need("height").whole(1, 0xFFFF));
        model.fx = fields.need("fx").number();
        model.fy = fields.need("fy").number();
        model.cx = fields.need("cx").number();
        model.cy = fields.need("cy").number();
        model.k1 = numberOr0(fields, "k1");
        model.k2 = numberOr0(fields, "k2");
        model.k3 = numberOr0(fields, "k3");
        model.p1 = numberOr0(fields, "p1");
        model.p2 = numberOr0(fields, "p2");
        fields.finish();
        models.push_back(model);
    }
    return models;
}

std::vector<float> readNumbers(const JsonValue& list, std::size_t count) {
    std::vector<float> numbers;
    for (const JsonValue& value : list.list())
        numbers.push_back(value.number());
    if (numbers.size() != count)
        list.fail(Format("must have % numbers, not %") % count % numbers.size());
    return numbers;
}

ExtrinsicParametersInternal readExtrinsics(const JsonValue& value) {
    JsonFields fields(value);
    const std::vector<float> r = readNumbers(fields.need("rotation"), 9);
    const std::vector<float> t = readNumbers(fields.need("translation"), 3);
    fields.finish();
    return {r[0], r[1], r[2], r[3], r[4], r[5], r[6], r[7], r[8], t[0], t[1], t[2]};
}

SensorValueArray readSensorValues(const JsonValue& list) {
    SensorValueArray values;
    for (const JsonValue& value : list.list()) {
        JsonFields fields(value);
        values.values.push_back({sensorId(fields), fields.need("value").number()});
        fields.finish();
    }
    return values;
}

SensorValue readCompensation(const JsonValue& value) {
    JsonFields fields(value);
    const SensorValue compensation{sensorId(fields), fields.need("coefficient").number()};
    fields.finish();
    return compensation;
}

CyclicErrorRecord readCyclicError(const JsonValue& value) {
    JsonFields fields(value);
    CyclicErrorRecord record;
    record.algorithm = static_cast<std::int32_t>(fields.need("algorithm").whole(0, 255));
    for (const JsonValue& parameter : fields.need("parameters").list(255))
        record.parameters.push_back(parameter.number());
    fields.finish();
    return record;
}

/// What stands there for camera mode 0, then 1.
template<typename T, typename Read>
void readByMode(const JsonValue& list, std::array<std::optional<T>, cameraModes>& modes, Read read) {
    modes = {}; // a further profile begins as a copy of the first one
    std::size_t mode = 0;
    for (const JsonValue& value : list.list(cameraModes))
        modes[mode++] = read(value);
}

FrameFormat readFrameFormat(JsonFields& fields) {
    static constexpr const char* names[] = {"QQVGA", "QVGA", "VGA", "HD720", "HD1080"};
    const JsonValue value = fields.need("frameFormat");
    const std::string name = value.text();
    for (std::int32_t format = FrameFormat_QQVGA; format <= FrameFormat_HD1080; ++format) {
        if (name == names[format - FrameFormat_QQVGA])
            return static_cast<FrameFormat>(format);
    }
    value.fail(Format("'%' is none of QQVGA QVGA VGA HD720 HD1080") % name);
}

int readCount(JsonFields& fields, const char* name, std::uint64_t most) {
    return static_cast<int>(fields.need(name).whole(1, most));
}

Utils::SmartPtr<DepthConfiguration> readDepthMode(JsonFields& fields) {
    const FrameFormat format = readFrameFormat(fields);
    const int rate = readCount(fields, "frameRate", 1000);
    const auto cameraMode = fields.find("cameraMode");
    const auto saturation = fields.find("saturation");
    const auto phaseDelay = fields.find("phaseDelay");
    auto mode = makeRefcounted<DepthConfiguration>(
        format, rate, static_cast<DepthNode::CameraMode>(cameraMode ? cameraMode->whole(0, 1) : 0),
        saturation && saturation->truth(),
        static_cast<std::int16_t>(phaseDelay ? phaseDelay->signedWhole(-32768, 32767) : 0));
    if (const auto commands = fields.find("commands"))
        mode->setCommands(readCommands(*commands));
    return mode;
}

PowerLineFrequency readPowerLine(JsonFields& fields) {
    const auto field = fields.find("powerLineFrequency");
    if (!field)
        return PowerLineFrequency_DISABLED;
    switch (field->whole(0, 60)) {
    case 0:
        return PowerLineFrequency_DISABLED;
    case 50:
        return PowerLineFrequency_50HZ;
    case 60:
        return PowerLineFrequency_60HZ;
    default:
        field->fail("must be 0, 50 or 60");
    }
}

Utils::SmartPtr<ColorConfiguration> readColorMode(JsonFields& fields) {
    const FrameFormat format = readFrameFormat(fields);
    const int rate = readCount(fields, "frameRate", 1000);
    return makeRefcounted<ColorConfiguration>(format, rate, readPowerLine(fields), CompressionType_NONE);
}

Utils::SmartPtr<AudioConfiguration> readAudioMode(JsonFields& fields) {
    const int channels = readCount(fields, "channels", 64);
    const int bits = readCount(fields, "bitsPerSample", 64);
    return makeRefcounted<AudioConfiguration>(channels, bits, readCount(fields, "sampleRate", 1'000'000));
}

/// A node finds its modes by their names.
template<typename Mode>
void addMode(std::vector<Utils::SmartPtr<Mode>>& modes, Utils::SmartPtr<Mode> mode, const JsonValue& value) {
    for (const auto& other : modes) {
        if (other->getName() == mode->getName())
            value.fail(Format("the mode % stands there twice") % mode->getName());
    }
    modes.push_back(std::move(mode));
}

void readModes(const JsonValue& list, NodeType type, ProfileDescription& profile) {
    profile.depthModes.clear();
    profile.colorModes.clear();
    profile.audioModes.clear();
    for (const JsonValue& value : list.list()) {
        JsonFields fields(value);
        if (type == NodeType_DEPTH)
            addMode(profile.depthModes, readDepthMode(fields), value);
        else if (type == NodeType_COLOR)
            addMode(profile.colorModes, readColorMode(fields), value);
        else
            addMode(profile.audioModes, readAudioMode(fields), value);
        fields.finish();
    }
}

/// What both video nodes have, and an audio node has not: its device has no extension unit.
void readCommandLists(JsonFields& fields, Core::NodeDescriptor& descriptor) {
    if (const auto field = fields.find("preCommon"))
        descriptor.preCommonSettings = readCommands(*field);
    if (const auto field = fields.find("postCommon"))
        descriptor.postCommonSettings = readCommands(*field);
    if (const auto field = fields.find("stopCommon"))
        descriptor.stopCommonSettings = readCommands(*field);
}

/// What a value of the depth image stands for.
void readDepth(JsonFields& fields, ProfileDescription& profile) {
    if (const auto unit = fields.find("depthUnit"))
        profile.depthUnit = static_cast<std::uint32_t>(unit->whole(1, 1'000'000));
    if (const auto along = fields.find("depthAlong")) {
        if (along->text() != "axis" && along->text() != "ray")
            along->fail(Format("'%' is none of axis ray") % along->text());
        profile.depthAlong = along->text() == "ray" ? Core::DepthAlong::Ray : Core::DepthAlong::Axis;
    }
}

void readCalibration(JsonFields& fields, ProfileDescription& profile) {
    if (const auto field = fields.find("depthIntrinsics"))
        profile.descriptor.defaultDepthIntrinsics = readIntrinsics(*field);
    if (const auto field = fields.find("colorIntrinsics"))
        profile.descriptor.defaultColorIntrinsics = readIntrinsics(*field);
    if (const auto field = fields.find("extrinsics"))
        profile.descriptor.defaultExtrinsics = readExtrinsics(*field);
    if (const auto field = fields.find("temperatureCalibration"))
        readByMode(*field, profile.temperatureCalibration, readSensorValues);
    if (const auto field = fields.find("temperatureCompensation"))
        profile.temperatureCompensation = readCompensation(*field);
    if (const auto field = fields.find("cyclicErrorCorrection"))
        readByMode(*field, profile.cyclicErrorCorrection, readCyclicError);
}

} // namespace

void readProfileFields(JsonFields& fields, NodeType type, ProfileDescription& profile) {
    Core::NodeDescriptor& descriptor = profile.descriptor;
    if (const auto field = fields.find("pixelFormat"))
        descriptor.fourCC = readPixelFormat(*field);
    if (const auto field = fields.find("capabilities"))
        descriptor.firstFlags = field->whole(0, anyWord);
    if (const auto field = fields.find("flags"))
        descriptor.secondFlags = field->whole(0, anyWord);
    if (type == NodeType_DEPTH)
        readDepth(fields, profile);
    if (const auto field = fields.find("regionOfInterest"))
        profile.regionOfInterest = readRegion(*field);
    if (const auto field = fields.find("romElements"))
        descriptor.romElements = readRomElements(*field);
    if (type != NodeType_AUDIO)
        readCommandLists(fields, descriptor);
    readCalibration(fields, profile);
    if (const auto field = fields.find("modes"))
        readModes(*field, type, profile);
}

} // namespace Zentara::Cameras
