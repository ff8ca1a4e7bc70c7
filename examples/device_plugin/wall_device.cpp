// A depth camera's video device from nothing: it looks at a wall that comes and goes.
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <vector>

#include <zentara/core/plugin_exports.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/io/streaming_requests.h>
#include <zentara/io/video_device_interface.h>
#include <zentara/io/xu_device_requests.h>
#include <zentara/plugin/plugin_exceptions.h>

namespace {

using namespace Zentara;
using Zentara::Plugin::ArgumentPluginException;
using Zentara::Plugin::ConfigurationPluginException;
using Zentara::Plugin::InvalidOperationPluginException;
using Zentara::Plugin::NotSupportedPluginException;
using Clock = std::chrono::steady_clock;

// Every plug-in has a GUID of its own: make a new one for yours. wall.json names it.
constexpr GUID wallGuid = {0x2B9C41D6, 0x80E7, 0x4A53, {0xB1, 0x0F, 0x66, 0x3D, 0x9A, 0xC2, 0x57, 0x1E}};

constexpr std::size_t pixels = std::size_t{160} * 120; // the one mode that wall.json describes
constexpr auto period = std::chrono::microseconds(1'000'000 / 30);
constexpr int frameBytes = pixels * sizeof(std::uint16_t);

class WallDevice : public IO::VideoDeviceInterface {
public:
    WallDevice() : VideoDeviceInterface(wallGuid) {}

    void threadInitialize() override {}
    void threadUninitialize() override {}
    bool cancelIO() override { return false; } // nothing here takes long enough to be cancelled

    // Where hardware is taken into use, and given back. Closing ends the stream.
    void open(IO::deviceRequest*) override { setState(State::Open); }
    void close(IO::deviceRequest*) override { setState(State::Closed); }
    void dispose() override {
        setState(State::Closed);
        VideoDeviceInterface::dispose();
    }

    void enableDepthStreaming(IO::enableDepthRequest* request) override {
        const auto& mode = request->getConfiguration();
        if (!mode)
            throw ArgumentPluginException("enableDepthStreaming: there is no mode");
        if (mode->getFrameFormat() != FrameFormat_QQVGA)
            throw ConfigurationPluginException("enableDepthStreaming: the wall is 160 x 120");
        const std::lock_guard hold(lock);
        if (state != State::Open)
            throw InvalidOperationPluginException("enableDepthStreaming: closed, or streaming");
        state = State::Streaming;
        due = Clock::now();
    }

    // Ends the wait of a reader, too; ending a stream that does not run is no failure.
    void disableStreaming(IO::disableRequest*) override {
        const std::lock_guard hold(lock);
        if (state == State::Streaming)
            state = State::Open;
        changed.notify_all();
    }

    // On a thread of the host's, beside the others: the lock is not held while waiting.
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override {
        if (buffer == nullptr || timestamp == nullptr || length == nullptr)
            throw ArgumentPluginException("readBuffer: a pointer is null");
        std::unique_lock hold(lock);
        if (changed.wait_until(hold, due, [this] { return state != State::Streaming; }))
            return ReadBufferStatus_NOT_STREAMING;
        *length = frameBytes;
        if (size < frameBytes)
            return ReadBufferStatus_TOO_SMALL;
        const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(due.time_since_epoch());
        *timestamp = micros.count();
        due += period;
        // From 1 m to 2 m away and back, within four seconds.
        const auto step = static_cast<std::uint16_t>(micros.count() / 2000 % 2000);
        const std::vector<std::uint16_t> depth(pixels, step < 1000 ? 1000 + step : 3000 - step);
        std::memcpy(buffer, depth.data(), frameBytes);
        return ReadBufferStatus_OK;
    }

    // What a depth camera without a controller has no use for.
    void getCameraControlRanges(IO::getCameraControlRangesRequest*) override { refuse("camera controls"); }
    void getConfigurations(IO::getColorConfigurationsRequest*) override { refuse("colour"); }
    void enableColorStreaming(IO::enableColorRequest*) override { refuse("colour"); }
    void setCameraControl(IO::setCameraControlRequest*) override { refuse("camera controls"); }
    void send(IO::xuSendRequest*) override { refuse("extension units"); }
    void recv(IO::xuRecvRequest*) override { refuse("extension units"); }
    void len(IO::xuLenRequest*) override { refuse("extension units"); }
    void xuSetup(IO::xuSetupRequest*) override { refuse("extension units"); }

private:
    enum class State : std::uint8_t { Closed, Open, Streaming };

    [[noreturn]] static void refuse(const std::string& what) {
        throw NotSupportedPluginException(what + ": the wall has none");
    }
    void setState(State next) {
        const std::lock_guard hold(lock);
        state = next;
        changed.notify_all();
    }

    std::mutex lock;
    std::condition_variable changed;
    State state = State::Closed;
    Clock::time_point due; ///< when the next frame is
};

} // namespace

ZENTARA_DEFINE_PLUGIN(WallDevice, wallGuid, Core::ImplType_VIDEO_DEVICE, 1, 0, 0)
