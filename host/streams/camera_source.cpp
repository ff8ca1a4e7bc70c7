#include "host/streams/camera_source.h"

#include <algorithm>
#include <utility>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/depth_configuration.h>
#include <zentara/host/failure.h>
#include <zentara/io/audio_device_proxy.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/utils/format.h>

#include "host/attempt.h"
#include "host/cameras/bare_camera.h"
#include "host/cameras/real_camera.h"
#include "host/cameras/stream_description.h"
#include "host/guid_text.h"

namespace Zentara::Host {

using Plugin::callPlugin;
using Utils::Format;

namespace {

constexpr std::chrono::milliseconds readerPatience{1'000};
constexpr float inputLevel = 0.5F;
constexpr std::size_t soundBytes = std::size_t{1} << 14; // about 10 ms of most formats

std::size_t usualBytesOf(const Mode& mode) {
    const std::size_t pixels = std::size_t{mode.width} * mode.height;
    if (mode.kind == Kind::Audio || pixels == 0)
        return soundBytes;
    return pixels * sizeof(std::uint16_t) * (mode.kind == Kind::Depth ? 3 : 1);
}

// Nodes -------------------------------------------------------------------------------------------------------------

/// The stream of a node, which it shares with its camera.
template<typename Node, typename Configuration>
class NodeSource final : public StreamSource {
public:
    NodeSource(std::shared_ptr<OpenNode<Node>> opened, StreamInfo stream)
        : node(std::move(opened)), name(cameraLabel(node->event())), about(std::move(stream)) {
        attempt("choose a mode of " + name, [&] { mode = find(); });
    }
    ~NodeSource() override {
        if (node->turn().giveUp(this))
            node->leaveStreaming();
    }
    NodeSource(const NodeSource&) = delete;
    NodeSource& operator=(const NodeSource&) = delete;

    [[nodiscard]] const StreamInfo& info() const override { return about; }
    [[nodiscard]] std::string label() const override { return name; }
    [[nodiscard]] std::string hardware() const override {
        return std::string(kindName(about.mode.kind)) + " " + node->event().path;
    }
    [[nodiscard]] std::size_t usualBytes() const override { return usualBytesOf(about.mode); }
    void start() override {
        if (node->takeLeftStreaming())
            disable();
        if (!node->turn().awaitReader(readerPatience))
            throw Failure(Failure::TimedOut, "cannot start " + name,
                          "the stream before it has not come back from reading", "open the camera anew");
        node->turn().take(this); // else another stream has it, and the node refuses
        (*node)->enableStreaming(mode);
    }
    ReadBufferStatus read(void* buffer, int size, std::int64_t* micros, int* length) override {
        const NodeTurn::Visit visit(node->turn(), this);
        if (!visit)
            return ReadBufferStatus_NOT_STREAMING;
        // What is thrown is kept until the node may have gone.
        return callPlugin([&] { return (*node)->readBuffer(buffer, size, micros, length); });
    }
    [[nodiscard]] SensorValueArray temperatures() override {
        if constexpr (std::is_same_v<Node, Core::DepthNodeInterface>)
            return callPlugin([&] { return (*node)->readTemperatures(); });
        else
            return {};
    }
    void stop() override {
        if (node->turn().giveUp(this)) // else it is another stream's
            disable();
    }
    void close() override {} // the node ends with the last who shares it

private:
    void disable() {
        try {
            (*node)->disableStreaming();
        } catch (...) {
            node->leaveStreaming();
            throw;
        }
    }
    [[nodiscard]] Utils::SmartPtr<Configuration> find() const {
        for (const auto& one : (*node)->getConfigurations()) {
            if (one->getName() == about.mode.name)
                return one;
        }
        throw Failure(Failure::Failed, Format("% has no mode %") % name % about.mode.name);
    }

    const std::shared_ptr<OpenNode<Node>> node;
    const std::string name;
    const StreamInfo about;
    Utils::SmartPtr<Configuration> mode;
};

/// Whether it is the same node of the same camera, perhaps in another socket.
bool isSameNode(const NodeEvent& left, const NodeEvent& right) {
    return left.path == right.path ||
           (!left.serialNumber.empty() && left.serialNumber == right.serialNumber &&
            left.hardwareIds() == right.hardwareIds());
}

/// Opens the node's stream, again and again as its camera comes and goes. Used on the camera's thread.
template<typename Node, typename Configuration>
class NodeOpener {
public:
    using Find = std::shared_ptr<OpenNode<Node>> (CameraParts::*)();

    NodeOpener(std::shared_ptr<RealCamera> of, Mode wanted, Find how)
        : camera(std::move(of)), mode(std::move(wanted)), find(how) {}

    std::shared_ptr<StreamSource> operator()() {
        CameraParts& parts = *camera->heldParts();
        if (event)
            comeBack(parts);
        const std::shared_ptr<OpenNode<Node>> node = (parts.*find)();
        event = node->event();
        last = node;
        return std::make_shared<NodeSource<Node, Configuration>>(
            node, parts.streamInfo(mode.kind, mode, camera->info()));
    }

private:
    /// Another stream of the camera may have been quicker: then its parts hold nothing of what has gone.
    void comeBack(CameraParts& parts) {
        for (const CameraEntry& entry : camera->origin()->entries()) {
            const bool isIt = std::any_of(entry.nodes.begin(), entry.nodes.end(),
                                          [this](const NodeEvent& node) { return isSameNode(node, *event); });
            if (!isIt)
                continue;
            if (!last.expired())
                parts.comeBack(entry);
            return;
        }
        throw Failure(Failure::NoDevice, Format("% is not plugged in") % cameraLabel(*event));
    }

    const std::shared_ptr<RealCamera> camera;
    const Mode mode;
    const Find find;
    std::optional<NodeEvent> event;     ///< of the node that was opened
    std::weak_ptr<OpenNode<Node>> last; ///< the node that was opened last
};

template<typename Node, typename Configuration>
StreamSetup nodeStream(const std::shared_ptr<RealCamera>& camera, const Mode& mode,
                       typename NodeOpener<Node, Configuration>::Find find) {
    const auto opener = std::make_shared<NodeOpener<Node, Configuration>>(camera, mode, find);
    return {[opener] { return (*opener)(); },
            Format("open the % stream of %") % kindName(mode.kind) % camera->info().label(), camera->hand(),
            camera->note(), camera->limit()};
}

// Bare devices ------------------------------------------------------------------------------------------------------

class DeviceSource : public StreamSource {
public:
    [[nodiscard]] const StreamInfo& info() const final { return about; }
    [[nodiscard]] std::string label() const final { return name; }
    [[nodiscard]] std::size_t usualBytes() const final { return usualBytesOf(about.mode); }
    ReadBufferStatus read(void* buffer, int size, std::int64_t* micros, int* length) final {
        return proxy->readBuffer(buffer, size, micros, length);
    }
    void stop() final { proxy->disableStreaming(false); }
    void close() final { proxy->close(); }

protected:
    DeviceSource(const GUID& plugin, StreamInfo stream) : name(guidLabel(plugin)), about(std::move(stream)) {}

    /// Only while it is being made.
    void setMode(Mode mode) { about.mode = std::move(mode); }

    template<typename Proxy>
    Proxy& open(const GUID& plugin) {
        attempt("create " + name, [&] { proxy = std::make_unique<Proxy>(plugin, false); });
        attempt("open " + name, [&] { proxy->open(); });
        return static_cast<Proxy&>(*proxy);
    }

    const std::string name;

private:
    StreamInfo about;
    std::unique_ptr<IO::AVDeviceProxy> proxy;
};

class VideoSource final : public DeviceSource {
public:
    VideoSource(const GUID& plugin, StreamInfo stream)
        : DeviceSource(plugin, std::move(stream)), device(open<IO::VideoDeviceProxy>(plugin)) {}

    void start() override {
        device.enableStreaming(Utils::SmartPtr<DepthBaseConfiguration>(
            Utils::makeRefcounted<DepthConfiguration>(FrameFormat_QVGA, static_cast<int>(info().mode.rate),
                                                      DepthNode::CameraMode_0, false, std::int16_t{0})));
    }

private:
    IO::VideoDeviceProxy& device;
};

class AudioSource final : public DeviceSource {
public:
    AudioSource(const GUID& plugin, StreamInfo stream)
        : DeviceSource(plugin, std::move(stream)), device(open<IO::AudioDeviceProxy>(plugin)) {
        const auto own = Utils::makeRefcounted<AudioConfiguration>();
        attempt("ask " + name + " for its mode", [&] { device.getDefaultConfiguration(own); });
        StreamDescription told;
        told.node.nodeType = NodeType_AUDIO;
        told.mode = StreamMode(*own);
        setMode(modeOf(told));
    }

    void start() override {
        const Mode& mode = info().mode;
        device.enableStreaming(Utils::makeRefcounted<AudioConfiguration>(mode.channels, mode.bitsPerSample,
                                                                         static_cast<int>(mode.rate)),
                               inputLevel, false);
    }

private:
    IO::AudioDeviceProxy& device;
};

} // namespace

StreamSetup streamOf(std::shared_ptr<RealCamera> camera, Kind kind, const Mode& mode) {
    switch (kind) {
    case Kind::Depth:
        return nodeStream<Core::DepthNodeInterface, DepthBaseConfiguration>(camera, mode,
                                                                            &CameraParts::depth);
    case Kind::Color:
        return nodeStream<Core::ColorNodeInterface, ColorConfiguration>(camera, mode, &CameraParts::color);
    case Kind::Audio:
        return nodeStream<Core::AudioNodeInterface, AudioConfiguration>(camera, mode, &CameraParts::audio);
    }
    throw Failure(Failure::Usage, "there is no such kind of stream");
}

StreamSetup streamOf(std::shared_ptr<BareCamera> camera, Kind kind, const Mode& mode) {
    const GUID plugin = camera->plugin(kind);
    return {[camera, plugin, kind, info = camera->streamInfo(kind, mode)]() -> std::shared_ptr<StreamSource> {
                if (kind == Kind::Audio)
                    return std::make_shared<AudioSource>(plugin, info);
                return std::make_shared<VideoSource>(plugin, info);
            },
            "open " + guidLabel(plugin), camera->hand(), camera->note(), camera->limit()};
}

} // namespace Zentara::Host
