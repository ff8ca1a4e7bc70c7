#include "host/cameras/stream_description.h"

#include <algorithm>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/utils/format.h>

namespace Zentara::Host {
namespace {

// Of what a file or a description says: far beyond any camera, and small enough for all that is worked out with it.
constexpr int mostFramesPerSecond = 10'000;
constexpr std::uint32_t longestSide = 8192; // pixels
constexpr int mostChannels = 64;
constexpr int mostSamplesPerSecond = 10'000'000;

} // namespace

StreamMode::StreamMode(const DepthBaseConfiguration& mode)
    : fields{mode.getFrameFormat(), mode.getFramerate(), 0, 0} {
    if (const auto* whole = dynamic_cast<const DepthConfiguration*>(&mode)) {
        fields[2] = whole->getCameraMode();
        fields[3] = whole->getSaturation() ? 1 : 0;
    }
}

StreamMode::StreamMode(const ColorConfiguration& mode)
    : fields{mode.getFrameFormat(), mode.getFramerate(), mode.getPowerLineFrequency(),
             mode.getCompression()} {}

StreamMode::StreamMode(const AudioConfiguration& mode)
    : fields{mode.getChannels(), mode.getBitsPerSample(), mode.getSampleRate(), 0} {}

Utils::SmartPtr<DepthConfiguration> StreamMode::depth() const {
    return Utils::makeRefcounted<DepthConfiguration>(static_cast<FrameFormat>(fields[0]), fields[1],
                                                     static_cast<DepthNode::CameraMode>(fields[2]),
                                                     fields[3] != 0, std::int16_t{0});
}

Utils::SmartPtr<ColorConfiguration> StreamMode::color() const {
    return Utils::makeRefcounted<ColorConfiguration>(static_cast<FrameFormat>(fields[0]), fields[1],
                                                     static_cast<PowerLineFrequency>(fields[2]),
                                                     static_cast<CompressionType>(fields[3]));
}

Utils::SmartPtr<AudioConfiguration> StreamMode::audio() const {
    return Utils::makeRefcounted<AudioConfiguration>(fields[0], fields[1], fields[2]);
}

bool StreamDescription::plausible() const {
    const auto within = [this](std::size_t field, int least, int most) {
        return mode.fields[field] >= least && mode.fields[field] <= most;
    };
    switch (node.nodeType) {
    case NodeType_DEPTH:
    case NodeType_COLOR:
        return frameSize().width != 0 && std::max(frameSize().width, frameSize().height) <= longestSide &&
               within(1, 1, mostFramesPerSecond);
    case NodeType_AUDIO:
        return within(0, 1, mostChannels) && within(1, 8, 64) && within(2, 1, mostSamplesPerSecond);
    default:
        return false;
    }
}

std::string StreamDescription::modeName() const {
    switch (node.nodeType) {
    case NodeType_DEPTH:
        return mode.depth()->getName();
    case NodeType_COLOR:
        return mode.color()->getName();
    case NodeType_AUDIO:
        return mode.audio()->getName();
    default:
        return "?";
    }
}

std::string StreamDescription::modeSize() const {
    if (node.nodeType == NodeType_AUDIO)
        return Utils::Format("% channels, % bits, % Hz") % mode.fields[0] % mode.fields[1] % mode.fields[2];
    const FrameSize size = frameSize();
    return Utils::Format("%x%@%") % size.width % size.height % mode.fields[1];
}

FrameSize StreamDescription::frameSize() const {
    const auto format = static_cast<FrameFormat>(mode.fields[0]);
    return Zentara::frameSize(format == FrameFormat_DEFAULT ? FrameFormat_QVGA : format);
}

int StreamDescription::rate() const {
    return std::max(1, mode.fields[node.nodeType == NodeType_AUDIO ? 2 : 1]);
}

std::vector<StreamDescription> modesOf(const NodeEvent& node, const Core::DescriptorStoreRO& store) {
    std::vector<StreamDescription> modes;
    switch (node.nodeType) {
    case NodeType_DEPTH:
        for (const auto& mode : store.getDepthConfigurations())
            modes.push_back({node, StreamMode(*mode)});
        break;
    case NodeType_COLOR:
        for (const auto& mode : store.getColorConfigurations())
            modes.push_back({node, StreamMode(*mode)});
        break;
    default:
        for (const auto& mode : store.getAudioConfigurations())
            modes.push_back({node, StreamMode(*mode)});
    }
    return modes;
}

Mode modeOf(const StreamDescription& stream) {
    Mode mode;
    mode.kind = kindOf(stream.node.nodeType).value_or(Kind::Depth);
    mode.name = stream.modeName();
    mode.rate = static_cast<std::uint32_t>(stream.rate());
    const auto& fields = stream.mode.fields;
    if (mode.kind == Kind::Audio) {
        mode.channels = fields[0];
        mode.bitsPerSample = fields[1];
        return mode;
    }
    const FrameSize size = stream.frameSize();
    mode.width = static_cast<std::uint32_t>(size.width);
    mode.height = static_cast<std::uint32_t>(size.height);
    if (mode.kind == Kind::Depth) {
        mode.cameraMode = fields[2];
        mode.saturation = fields[3] != 0;
    } else {
        mode.powerLineFrequency = fields[2];
        mode.compression = fields[3];
    }
    return mode;
}

std::optional<Kind> kindOf(NodeType type) noexcept {
    switch (type) {
    case NodeType_DEPTH:
        return Kind::Depth;
    case NodeType_COLOR:
        return Kind::Color;
    case NodeType_AUDIO:
        return Kind::Audio;
    default:
        return {};
    }
}

NodeType nodeTypeOf(Kind kind) noexcept {
    return kind == Kind::Depth ? NodeType_DEPTH : kind == Kind::Color ? NodeType_COLOR : NodeType_AUDIO;
}

} // namespace Zentara::Host
