#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/depth_configuration.h>
#include <zentara/frame_format.h>
#include <zentara/host/mode.h>
#include <zentara/node_event.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara::Core {
class DescriptorStoreRO;
}

namespace Zentara::Host {

/// The mode of a stream of any kind: the fields of the kind's configuration as numbers.
///
///     depth   frame format, frame rate, camera mode, saturation (0 or 1)
///     colour  frame format, frame rate, power-line frequency, compression
///     audio   channels, bits per sample, sample rate, 0
struct StreamMode {
    std::array<std::int32_t, 4> fields{};

    StreamMode() = default;
    explicit StreamMode(const DepthBaseConfiguration& mode);
    explicit StreamMode(const ColorConfiguration& mode);
    explicit StreamMode(const AudioConfiguration& mode);

    // What the numbers mean; only those of the kind.
    [[nodiscard]] Utils::SmartPtr<DepthConfiguration> depth() const;
    [[nodiscard]] Utils::SmartPtr<ColorConfiguration> color() const;
    [[nodiscard]] Utils::SmartPtr<AudioConfiguration> audio() const;

    friend bool operator==(const StreamMode&, const StreamMode&) = default;
};

/// Who delivers a stream, and in which mode.
struct StreamDescription {
    NodeEvent node;
    StreamMode mode;

    /// Whether it describes a stream that there can be: a known kind, a known size, a rate and so on.
    [[nodiscard]] bool plausible() const;

    /// The name of the mode's configuration.
    [[nodiscard]] std::string modeName() const;

    /// What a person asks of a mode: "320x240@60"; of sound "2 channels, 16 bits, 48000 Hz".
    [[nodiscard]] std::string modeSize() const;

    /// Of a depth or colour stream; the size of QVGA where the mode leaves it to the node.
    [[nodiscard]] FrameSize frameSize() const;

    /// Frames a second, for sound samples a second; 1 at least.
    [[nodiscard]] int rate() const;
};

/// The modes that a description offers for the node that it has selected.
[[nodiscard]] std::vector<StreamDescription> modesOf(const NodeEvent& node,
                                                     const Core::DescriptorStoreRO& store);

/// The same mode for hosts.
[[nodiscard]] Mode modeOf(const StreamDescription& stream);

/// The kind of a node that has a stream; nothing for any other.
[[nodiscard]] std::optional<Kind> kindOf(NodeType type) noexcept;
[[nodiscard]] NodeType nodeTypeOf(Kind kind) noexcept;

} // namespace Zentara::Host
