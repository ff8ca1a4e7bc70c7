#include "tools/zentara/streams/recorded_stream.h"

namespace Zentara::Tool {
namespace {

using namespace Host;

std::int32_t formatOf(const Mode& mode) {
    for (std::int32_t format = FrameFormat_QQVGA; format < FrameFormat_DEFAULT; ++format) {
        if (frameSize(static_cast<FrameFormat>(format)) == FrameSize{mode.width, mode.height})
            return format;
    }
    return FrameFormat_DEFAULT;
}

} // namespace

StreamInfo recordedStream(const StreamDescription& stream) {
    StreamInfo info;
    info.mode = modeOf(stream);
    info.camera.serial = stream.node.serialNumber;
    info.camera.name = stream.node.name;
    info.camera.path = stream.node.parentPath;
    info.camera.kinds = {info.mode.kind};
    info.camera.nodes = {{info.mode.kind, stream.node.name, stream.node.path, stream.node.hardwareIds()}};
    info.lensSource = info.poseSource = info.correctionsSource = Source::Unknown;
    return info;
}

StreamDescription playedStream(const StreamInfo& info) {
    const Mode& mode = info.mode;
    const auto rate = static_cast<std::int32_t>(mode.rate);
    StreamDescription stream;
    stream.node.name = info.camera.name;
    for (const auto& node : info.camera.nodes) {
        if (node.kind == mode.kind)
            stream.node.name = node.name; // as the stream was called when it was recorded
    }
    stream.node.serialNumber = info.camera.serial;
    stream.node.parentPath = info.camera.path;
    switch (mode.kind) {
    case Kind::Depth:
        stream.node.nodeType = NodeType_DEPTH;
        stream.mode.fields = {formatOf(mode), rate, mode.cameraMode, mode.saturation ? 1 : 0};
        break;
    case Kind::Color:
        stream.node.nodeType = NodeType_COLOR;
        stream.mode.fields = {formatOf(mode), rate, mode.powerLineFrequency, mode.compression};
        break;
    case Kind::Audio:
        stream.node.nodeType = NodeType_AUDIO;
        stream.mode.fields = {mode.channels, mode.bitsPerSample, rate, 0};
        break;
    }
    return stream;
}

} // namespace Zentara::Tool
