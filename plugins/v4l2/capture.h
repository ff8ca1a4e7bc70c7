#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <zentara/camera_controls.h>
#include <zentara/read_buffer_status.h>
#include <zentara/region_of_interest_internal.h>
#include <zentara/utils/condition.h>
#include <zentara/utils/mutex.h>

#include "plugins/v4l2/modes.h"
#include "plugins/v4l2/picture.h"

namespace Zentara::V4l2 {

/// Chooses the part of the sensor that is delivered. On the device's own thread.
/// \throws Plugin::NotSupportedPluginException when the driver cannot; Plugin::ArgumentPluginException for a part that the
///         sensor doesn't have; Plugin::ConfigurationPluginException when the driver makes another part of it: it stays as it was
void cropTo(const DeviceFile& file, const RegionOfInterestInternal& region);

/// A stream of a video node: the driver's buffers, which this process shares, and the reader's turns at them.
///
///                          pause()              resume()
///     streaming -----------------------> paused ---------> streaming
///         |  end()                          |  end()
///         +----------------> ended <--------+
///         |  the camera was pulled out
///         +----------------> gone
///
/// Made, paused, resumed, stopped and destroyed on the device's own thread, for all these may wait for the camera. `read`
/// and `end` are safe; `read` makes the two calls alone that never wait for it.
class Capture {
public:
    /// Sets the mode, shares the buffers and starts the camera.
    /// \param crop of the sensor; nothing for all of it
    /// \throws what DeviceFile::fail does; Plugin::ConfigurationPluginException when the driver makes another mode of it
    Capture(std::shared_ptr<DeviceFile> file, const DriverMode& mode, Delivery delivery,
            const std::optional<RegionOfInterestInternal>& crop);
    /// As stop().
    ~Capture();
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    /// As IO::AVDeviceInterface::readBuffer; the arguments are not null.
    ReadBufferStatus read(void* buffer, int size, std::int64_t* timestamp, int* length);

    /// No frame comes any more: the reader leaves at once.
    void end();
    /// Stops the camera, after end(). Once is enough.
    void stop() noexcept;

    void pause();
    void resume();

    /// How many frames came that were none: marked by the driver, cut short, or broken.
    [[nodiscard]] std::uint64_t broken() const;

private:
    enum class State : std::uint8_t { Streaming, Paused, Ended, Gone };
    struct Buffer;
    /// A fetched frame.
    struct Frame {
        std::uint32_t index = 0; ///< of its buffer
        std::uint32_t used = 0;  ///< bytes
        std::int64_t micros = 0;
    };

    void setFormat(const DriverMode& mode);
    void setRate(const DriverMode& mode);
    [[nodiscard]] Layout readLayout() const;
    [[nodiscard]] std::uint32_t requestMemory();
    void shareBuffers(std::uint32_t count);
    void start();
    void change(State next);
    [[nodiscard]] ReadBufferStatus stateStatus() const;
    [[nodiscard]] ReadBufferStatus waitWhilePaused(std::int64_t end);
    [[nodiscard]] ReadBufferStatus fetch(std::int64_t end) ZENTARA_REQUIRES(turn);
    [[nodiscard]] ReadBufferStatus take() ZENTARA_REQUIRES(turn);
    void giveBack() ZENTARA_REQUIRES(turn);
    void countBroken();

    const std::shared_ptr<DeviceFile> file;
    std::unique_ptr<Picture> picture; ///< this and the next are set once, before there is a reader
    std::unique_ptr<Linux::FrameWait> frames;
    /// By the driver's numbers. Changed while no reader comes here: before the first state is Streaming, and in stop().
    std::vector<std::unique_ptr<Buffer>> buffers;
    Linux::WakeUp wake; ///< set unless the state is Streaming
    // The device's own thread's.
    bool shared = false;  ///< the driver has memory of this stream, which it is to let go
    bool started = false; ///< the camera delivers

    Utils::Threading::Mutex turn; ///< the reader's; taken before `lock`
    std::optional<Frame>
        held ZENTARA_GUARDED_BY(turn); ///< fetched, and too large for the reader who was there

    mutable Utils::Threading::Mutex lock;
    Utils::Threading::Condition changed{&lock};
    State state ZENTARA_GUARDED_BY(lock) = State::Paused; ///< Ended and Gone are for good
    std::uint64_t brokenFrames ZENTARA_GUARDED_BY(lock) = 0;
};

} // namespace Zentara::V4l2
