#include "host/recordings/stream_chunk.h"

#include <array>

#include <zentara/host/failure.h>
#include <zentara/utils/binary_reader.h>
#include <zentara/utils/binary_writer.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/format.h>

#include "host/cameras/stream_description.h"

namespace Zentara::Host {
namespace {

using Utils::BinaryReader;
using Utils::BinaryWriter;
using Utils::Format;

constexpr std::uint32_t mostSide = 65'535; ///< of a picture, in pixels
constexpr std::uint32_t mostFramesPerSecond = 10'000;
constexpr std::int32_t mostChannels = 64;
constexpr std::uint32_t mostSamplesPerSecond = 10'000'000;
constexpr std::int32_t mostElements = 1024; ///< of a list

[[noreturn]] void refuse(const std::string& what) { throw Failure(Failure::Failed, what); }

/// The same walk over the fields writes and reads them: what is written in one order cannot be read in another.
class Writing {
public:
    void number(std::uint16_t& value) { bytes.write(value); }
    void number(std::int16_t& value) { bytes.write(value); }
    void number(std::uint32_t& value) { bytes.write(value); }
    void number(std::int32_t& value) { bytes.write(value); }
    void number(float& value) { bytes.write(value); }
    void flag(bool& value) { bytes.write(static_cast<std::int32_t>(value)); }
    void text(std::string& value) { bytes.write(value); }
    template<typename Enum>
    void word(Enum& value, Enum) {
        bytes.write(static_cast<std::int32_t>(value));
    }
    /// \return how many elements follow
    std::size_t list(std::size_t size) {
        bytes.write(static_cast<std::int32_t>(size));
        return size;
    }
    BinaryWriter bytes;
};

class Reading {
public:
    explicit Reading(std::span<const std::uint8_t> payload)
        : bytes(payload.data(), static_cast<int>(payload.size())) {}

    void number(std::uint16_t& value) { value = bytes.readUShort(); }
    void number(std::int16_t& value) { value = bytes.readShort(); }
    void number(std::uint32_t& value) { value = bytes.readUInt(); }
    void number(std::int32_t& value) { value = bytes.readInt(); }
    void number(float& value) { value = bytes.readFloat(); }
    void flag(bool& value) { value = bytes.readInt() != 0; }
    void text(std::string& value) { value = bytes.readString(); }
    template<typename Enum>
    void word(Enum& value, Enum last) {
        const std::int32_t stored = bytes.readInt();
        if (stored < 0 || stored > static_cast<std::int32_t>(last))
            refuse(Format("has the word % where there are 0 to %") % stored %
                   static_cast<std::int32_t>(last));
        value = static_cast<Enum>(stored);
    }
    std::size_t list(std::size_t) {
        const std::int32_t size = bytes.readInt();
        if (size < 0 || size > mostElements)
            refuse(Format("has a list of %") % size);
        return static_cast<std::size_t>(size);
    }
    BinaryReader bytes;
};

template<typename Walk>
void walk(Walk& on, SensorValue& value) {
    on.number(value.sensorId);
    on.number(value.value);
}
template<typename Walk>
void walk(Walk& on, float& value) {
    on.number(value);
}
template<typename Walk>
void walk(Walk& on, std::int32_t& value) {
    on.number(value);
}
template<typename Walk>
void walk(Walk& on, Kind& value) {
    on.word(value, Kind::Audio);
}
template<typename Walk>
void walk(Walk& on, NodeInfo& node) {
    on.word(node.kind, Kind::Audio);
    on.text(node.name);
    on.text(node.path);
    for (std::uint32_t* id :
         {&node.ids.vendorId, &node.ids.productId, &node.ids.revision, &node.ids.interfaceNumber})
        on.number(*id);
}
template<typename Walk, typename Element>
void walk(Walk& on, std::vector<Element>& values) {
    values.resize(on.list(values.size()));
    for (Element& value : values)
        walk(on, value);
}

template<typename Walk>
void walk(Walk& on, Mode& mode) {
    on.word(mode.kind, Kind::Audio);
    on.text(mode.name);
    on.number(mode.width);
    on.number(mode.height);
    on.number(mode.rate);
    on.number(mode.cameraMode);
    on.flag(mode.saturation);
    on.number(mode.powerLineFrequency);
    on.number(mode.compression);
    on.number(mode.channels);
    on.number(mode.bitsPerSample);
}

template<typename Walk>
void walk(Walk& on, CameraInfo& camera) {
    for (std::string* text :
         {&camera.serial, &camera.name, &camera.vendor, &camera.product, &camera.path, &camera.controller})
        on.text(*text);
    walk(on, camera.kinds);
    walk(on, camera.nodes);
}

template<typename Walk>
void walk(Walk& on, CameraIntrinsics& lens) {
    on.number(lens.width);
    on.number(lens.height);
    for (float* value :
         {&lens.fx, &lens.fy, &lens.cx, &lens.cy, &lens.k1, &lens.k2, &lens.k3, &lens.p1, &lens.p2})
        on.number(*value);
}

template<typename Walk>
void walk(Walk& on, ExtrinsicParametersInternal& pose) {
    for (float* value : {&pose.r11, &pose.r12, &pose.r13, &pose.r21, &pose.r22, &pose.r23, &pose.r31,
                         &pose.r32, &pose.r33, &pose.t1, &pose.t2, &pose.t3})
        on.number(*value);
}

template<typename Walk, typename Value>
void walk(Walk& on, std::optional<Value>& value) {
    bool isThere = value.has_value(); // of an empty one that is read: what the file says
    on.flag(isThere);
    if (isThere && !value)
        value.emplace();
    if (isThere)
        walk(on, *value);
}

template<typename Walk>
void walk(Walk& on, Corrections& corrections) {
    for (ModeCorrections& mode : corrections.modes) {
        on.word(mode.temperature, ModeCorrections::Temperature::Other);
        walk(on, mode.temperatureParameters);
        walk(on, mode.temperatureSensors);
        walk(on, mode.calibratedAt.values);
        on.number(mode.cyclicAlgorithm);
        walk(on, mode.cyclicParameters);
    }
    on.number(corrections.phaseDelay);
    on.number(corrections.phaseDelay2);
}

template<typename Walk>
void walk(Walk& on, StreamInfo& info) {
    walk(on, info.mode);
    walk(on, info.camera);
    on.number(info.millimetresPerUnit);
    on.number(info.millimetresPerPhaseStep);
    on.word(info.depthAlong, DepthAlong::Ray);
    walk(on, info.lens);
    walk(on, info.pose);
    walk(on, info.corrections);
    for (Source* source : {&info.lensSource, &info.poseSource, &info.correctionsSource})
        on.word(*source, Source::Unknown);
    on.text(info.sourceFailure);
}

/// Version 1 knew the node and the numbers of its configuration.
StreamInfo readFirstVersion(BinaryReader bytes) {
    StreamDescription stream;
    NodeEvent& node = stream.node;
    node.nodeType = static_cast<NodeType>(bytes.readInt());
    for (std::int32_t& field : stream.mode.fields)
        field = bytes.readInt();
    for (std::uint32_t* id : {&node.vendorId, &node.productId, &node.revision, &node.interfaceNumber})
        *id = bytes.readUInt();
    node.nodeIndex = bytes.readUInt();
    for (std::string* text : {&node.path, &node.parentPath, &node.name, &node.serialNumber})
        *text = bytes.readString();
    if (!stream.plausible())
        refuse(Format("is of kind % and in a mode that does not exist") % static_cast<int>(node.nodeType));
    StreamInfo info;
    info.camera.serial = node.serialNumber;
    info.camera.name = node.name;
    info.camera.path = node.parentPath;
    info.mode = modeOf(stream);
    info.camera.kinds = {info.mode.kind};
    info.camera.nodes = {{info.mode.kind, node.name, node.path, node.hardwareIds()}};
    info.lensSource = info.poseSource = info.correctionsSource = Source::Unknown;
    return info;
}

/// A known size, a rate and so on: what reads the frames counts on it.
void check(const Mode& mode) {
    const bool fits = mode.kind == Kind::Audio
                          ? mode.channels >= 1 && mode.channels <= mostChannels && mode.bitsPerSample >= 8 &&
                                mode.bitsPerSample <= 64 && mode.rate >= 1 &&
                                mode.rate <= mostSamplesPerSecond
                          : mode.width >= 1 && mode.width <= mostSide && mode.height >= 1 &&
                                mode.height <= mostSide && mode.rate >= 1 && mode.rate <= mostFramesPerSecond;
    if (!fits)
        refuse(Format("is of kind % and in a mode that does not exist: %") % kindName(mode.kind) %
               mode.text());
}

} // namespace

Utils::ByteArray streamChunk(const StreamInfo& info) {
    StreamInfo copy = info;
    Writing writing;
    walk(writing, copy);
    return writing.bytes.toByteArray();
}

StreamInfo readStreamChunk(std::span<const std::uint8_t> payload, std::uint16_t version) {
    try {
        if (version == 1)
            return readFirstVersion({payload.data(), static_cast<int>(payload.size())});
        Reading reading(payload);
        StreamInfo info;
        walk(reading, info);
        check(info.mode);
        // Written again it must take as many bytes: what is left over was not understood.
        if (static_cast<std::size_t>(streamChunk(info).size()) != payload.size())
            refuse("is too long");
        return info;
    } catch (const Utils::UIOException&) {
        refuse("is too short");
    }
}

} // namespace Zentara::Host
