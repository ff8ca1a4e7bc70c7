#include "tools/zentara/streams/device_source.h"

#include <exception>

#include <zentara/io/audio_device_proxy.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/utils/format.h>

#include "host/cameras/device_choice.h"
#include "host/guid_text.h"
#include "tools/zentara/exit_code.h"

namespace Zentara::Tool {
namespace {

constexpr float inputLevel = 0.5F;

class DeviceSource : public StreamSource {
public:
    ~DeviceSource() override {
        const Step watched("let go of " + label());
        proxy.reset();
    }

    [[nodiscard]] const StreamDescription& description() const override { return told; }
    [[nodiscard]] std::string label() const final { return told.node.name; }
    ReadBufferStatus read(void* buffer, int size, std::int64_t* micros, int* length) override {
        return proxy->readBuffer(buffer, size, micros, length);
    }
    void stop() override {
        attempt("stop the stream of " + label(), [&] { proxy->disableStreaming(false); });
    }
    void close() override {
        attempt("close " + label(), [&] { proxy->close(); });
    }

protected:
    DeviceSource(NodeType type, const GUID& guid) {
        told.node.nodeType = type;
        told.node.name = guidLabel(guid);
        told.node.path = told.node.name;
        told.node.parentPath = "devices"; // video and sound are one camera's
    }

    template<typename Proxy>
    Proxy& open(const GUID& guid) {
        attempt("create " + label(), [&] { proxy = std::make_unique<Proxy>(guid, false); });
        attempt("open " + label(), [&] { proxy->open(); });
        return static_cast<Proxy&>(*proxy);
    }

    StreamDescription told;
    std::unique_ptr<IO::AVDeviceProxy> proxy;
};

class VideoSource final : public DeviceSource {
public:
    explicit VideoSource(const GUID& guid)
        : DeviceSource(NodeType_DEPTH, guid), device(open<IO::VideoDeviceProxy>(guid)) {
        told.mode.fields = {FrameFormat_QVGA, 60, DepthNode::CameraMode_0, 0};
    }

    void start() override {
        attempt(Utils::Format("stream % from %") % told.modeName() % label(),
                [&] { device.enableStreaming(Utils::SmartPtr<DepthBaseConfiguration>(told.mode.depth())); });
    }

private:
    IO::VideoDeviceProxy& device;
};

class AudioSource final : public DeviceSource {
public:
    explicit AudioSource(const GUID& guid)
        : DeviceSource(NodeType_AUDIO, guid), device(open<IO::AudioDeviceProxy>(guid)) {
        const auto mode = Utils::makeRefcounted<AudioConfiguration>();
        attempt("ask " + label() + " for its mode", [&] { device.getDefaultConfiguration(mode); });
        told.mode = StreamMode(*mode);
    }

    void start() override {
        attempt(Utils::Format("stream % from %") % told.modeName() % label(),
                [&] { device.enableStreaming(told.mode.audio(), inputLevel, false); });
    }

private:
    IO::AudioDeviceProxy& device;
};

} // namespace

std::unique_ptr<StreamSource> openDeviceStream(NodeType type, const std::vector<std::string>& plugins,
                                               const Host::Note& note) {
    if (type == NodeType_AUDIO)
        return std::make_unique<AudioSource>(
            chooseDevice(Core::ImplType_AUDIO_DEVICE, "audio device", plugins, note));
    return std::make_unique<VideoSource>(
        chooseDevice(Core::ImplType_VIDEO_DEVICE, "video device", plugins, note));
}

} // namespace Zentara::Tool
