#include "plugins/v4l2/capture.h"

#include <cerrno>
#include <linux/videodev2.h>
#include <utility>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

#include "plugins/linux/fourcc_text.h"

namespace Zentara::V4l2 {

using Utils::Format;
using Utils::Threading::AutoLock;

namespace {

constexpr std::uint32_t wantedBuffers = 4;    // frames that a reader may be late
constexpr std::uint32_t leastBuffers = 2;     // one is filled while the other is read
constexpr std::int64_t longestRead = 900'000; // microseconds; a reader is to be back within a second
constexpr int brokenPauseMilliseconds = 50;   // a node that has an error is ready for ever

v4l2_buffer bufferNumbered(std::uint32_t index) {
    v4l2_buffer buffer{};
    buffer.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    buffer.memory = V4L2_MEMORY_MMAP;
    buffer.index = index;
    return buffer;
}

void requestBuffers(const DeviceFile& file, std::uint32_t& count) {
    v4l2_requestbuffers request{};
    request.count = count;
    request.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    request.memory = V4L2_MEMORY_MMAP;
    file.require(VIDIOC_REQBUFS, request, "share memory for frames");
    count = request.count;
}

std::int64_t microsOf(const v4l2_buffer& buffer) {
    if ((buffer.flags & V4L2_BUF_FLAG_TIMESTAMP_MASK) != V4L2_BUF_FLAG_TIMESTAMP_MONOTONIC)
        return Utils::Clock::nowMicros(); // the driver's clock is another one
    return std::int64_t{buffer.timestamp.tv_sec} * 1'000'000 + buffer.timestamp.tv_usec;
}

v4l2_selection selection(std::uint32_t target) {
    v4l2_selection made{};
    made.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    made.target = target;
    return made;
}

std::string rectangleText(const v4l2_rect& part) {
    return Format("% x % at %,%") % part.width % part.height % part.left % part.top;
}

/// What another program left: a part of the frame that alone is written. Many drivers have no such thing.
void fillWholeFrame(const DeviceFile& file) {
    v4l2_selection whole = selection(V4L2_SEL_TGT_COMPOSE_DEFAULT);
    if (file.control(VIDIOC_G_SELECTION, whole) < 0)
        return;
    whole.target = V4L2_SEL_TGT_COMPOSE;
    file.require(VIDIOC_S_SELECTION, whole, "fill the whole frame");
}

} // namespace

void cropTo(const DeviceFile& file, const RegionOfInterestInternal& region) {
    v4l2_selection bounds = selection(V4L2_SEL_TGT_CROP_BOUNDS);
    const int result = file.control(VIDIOC_G_SELECTION, bounds);
    if (result == -ENOTTY || result == -EINVAL)
        throw Plugin::NotSupportedPluginException(
            Format("%: setting region of interest is not supported: the driver delivers the whole picture") %
            file.path());
    if (result < 0)
        file.fail("ask for the size of the sensor", -result);
    const auto fits = [](std::uint32_t start, std::uint32_t length, std::uint32_t all) {
        return length > 0 && start < all && length <= all - start;
    };
    if (!fits(region.x, region.width, bounds.r.width) || !fits(region.y, region.height, bounds.r.height))
        throw Plugin::ArgumentPluginException(
            Format("%: the region % x % at %,% is not inside the picture of % x %") % file.path() %
            region.width % region.height % region.x % region.y % bounds.r.width % bounds.r.height);
    v4l2_selection before = selection(V4L2_SEL_TGT_CROP);
    file.require(VIDIOC_G_SELECTION, before, "ask for the region of interest");
    v4l2_selection part = selection(V4L2_SEL_TGT_CROP);
    part.r = {bounds.r.left + static_cast<std::int32_t>(region.x),
              bounds.r.top + static_cast<std::int32_t>(region.y), region.width, region.height};
    const std::string wanted = rectangleText(part.r);
    file.require(VIDIOC_S_SELECTION, part, "set the region of interest");
    const std::string made = rectangleText(part.r);
    if (made == wanted)
        return;
    file.require(VIDIOC_S_SELECTION, before, "set the former region of interest");
    throw Plugin::ConfigurationPluginException(Format("%: the driver makes the region % of %; it stays %") %
                                               file.path() % made % wanted % rectangleText(before.r));
}

/// A frame's memory, which the driver writes.
struct Capture::Buffer {
    Buffer(const DeviceFile& file, std::uint32_t index) : system(file.sharedSystem()) {
        v4l2_buffer buffer = bufferNumbered(index);
        file.require(VIDIOC_QUERYBUF, buffer, "ask for the memory of a frame");
        length = buffer.length;
        memory = system->map(file.number(), length, buffer.m.offset);
        if (memory == nullptr)
            throw Plugin::IOPluginException(Format("%: cannot share % bytes with the driver") % file.path() %
                                            length);
    }
    ~Buffer() { system->unmap(memory, length); }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    [[nodiscard]] std::span<const std::byte> bytes(std::size_t used) const {
        return {memory, std::min<std::size_t>(used, length)};
    }

    const std::shared_ptr<Linux::Kernel> system;
    std::byte* memory = nullptr;
    std::uint32_t length = 0;
};

Capture::Capture(std::shared_ptr<DeviceFile> opened, const DriverMode& mode, Delivery delivery,
                 const std::optional<RegionOfInterestInternal>& crop)
    : file(std::move(opened)) {
    setFormat(mode);
    setRate(mode);
    if (crop)
        cropTo(*file, *crop);
    fillWholeFrame(*file);
    try {
        const std::uint32_t count = requestMemory();
        // The driver may have changed its mind when it was asked for memory.
        picture = std::make_unique<Picture>(readLayout(), delivery);
        shareBuffers(count);
        start();
        frames = std::make_unique<Linux::FrameWait>(file->sharedSystem(), file->number(), wake);
    } catch (...) {
        stop();
        throw;
    }
    change(State::Streaming);
}

Capture::~Capture() { stop(); }

void Capture::setFormat(const DriverMode& mode) {
    v4l2_format format{};
    format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    format.fmt.pix.width = mode.size.width;
    format.fmt.pix.height = mode.size.height;
    format.fmt.pix.pixelformat = mode.fourCC;
    format.fmt.pix.field = V4L2_FIELD_ANY;
    file->require(VIDIOC_S_FMT, format, "set the format");
    const v4l2_pix_format& made = format.fmt.pix;
    if (made.width != mode.size.width || made.height != mode.size.height || made.pixelformat != mode.fourCC)
        throw Plugin::ConfigurationPluginException(
            Format("%: the driver makes % x % of % of a mode that it lists, % x % of %") % file->path() %
            made.width % made.height % Linux::fourCCText(made.pixelformat) % mode.size.width %
            mode.size.height % Linux::fourCCText(mode.fourCC));
}

void Capture::setRate(const DriverMode& mode) {
    if (mode.rate() == 0)
        return; // the driver has one rate, and doesn't say which
    v4l2_streamparm parameters{};
    parameters.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    parameters.parm.capture.timeperframe = {mode.numerator, mode.denominator};
    file->require(VIDIOC_S_PARM, parameters, "set the frame rate");
    const v4l2_fract& made = parameters.parm.capture.timeperframe;
    const DriverMode told{mode.fourCC, mode.size, made.numerator, made.denominator};
    if (told.rate() != mode.rate())
        throw Plugin::ConfigurationPluginException(
            Format("%: the driver makes % frames a second of a mode that it lists with %") % file->path() %
            told.rate() % mode.rate());
}

Layout Capture::readLayout() const {
    v4l2_format format{};
    format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    file->require(VIDIOC_G_FMT, format, "ask for the format");
    const v4l2_pix_format& pixels = format.fmt.pix;
    return {pixels.pixelformat, pixels.width, pixels.height, pixels.bytesperline, pixels.sizeimage};
}

std::uint32_t Capture::requestMemory() {
    std::uint32_t count = wantedBuffers;
    requestBuffers(*file, count);
    shared = true;
    if (count < leastBuffers)
        throw Plugin::IOPluginException(Format("%: the driver shares memory for % frames; it takes %") %
                                        file->path() % count % leastBuffers);
    return count;
}

void Capture::shareBuffers(std::uint32_t count) {
    for (std::uint32_t index = 0; index < count; ++index)
        buffers.push_back(std::make_unique<Buffer>(*file, index));
}

void Capture::start() {
    for (std::uint32_t index = 0; index < buffers.size(); ++index) {
        v4l2_buffer buffer = bufferNumbered(index);
        file->require(VIDIOC_QBUF, buffer, "hand memory to the driver");
    }
    int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    file->require(VIDIOC_STREAMON, type, "start the stream");
    started = true;
}

/// What fails here fails because the camera has gone.
void Capture::stop() noexcept {
    const AutoLock reader(turn);
    if (!shared)
        return;
    shared = false;
    int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    if (std::exchange(started, false))
        static_cast<void>(file->control(VIDIOC_STREAMOFF, type));
    buffers.clear();
    v4l2_requestbuffers none{};
    none.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    none.memory = V4L2_MEMORY_MMAP;
    static_cast<void>(file->control(VIDIOC_REQBUFS, none));
}

void Capture::change(State next) {
    const AutoLock hold(lock);
    if (state == State::Ended || state == State::Gone)
        return;
    state = next;
    if (next == State::Streaming)
        wake.reset();
    else
        wake.set();
    changed.notifyAll();
}

void Capture::end() { change(State::Ended); }

void Capture::pause() {
    change(State::Paused);
    const AutoLock reader(turn);
    held.reset();
    if (!std::exchange(started, false))
        return;
    int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    file->require(VIDIOC_STREAMOFF, type, "pause the stream");
}

void Capture::resume() {
    if (started)
        return;
    start();
    change(State::Streaming);
}

std::uint64_t Capture::broken() const {
    const AutoLock hold(lock);
    return brokenFrames;
}

void Capture::countBroken() {
    const AutoLock hold(lock);
    ++brokenFrames;
}

/// OK while frames may come.
ReadBufferStatus Capture::stateStatus() const {
    const AutoLock hold(lock);
    switch (state) {
    case State::Streaming:
    case State::Paused:
        return ReadBufferStatus_OK;
    case State::Gone:
        return ReadBufferStatus_DISCONNECTED;
    case State::Ended:
        break;
    }
    return ReadBufferStatus_NOT_STREAMING;
}

/// \return TIMEOUT when it has been paused all the time
ReadBufferStatus Capture::waitWhilePaused(std::int64_t end) {
    const AutoLock hold(lock);
    while (state == State::Paused) {
        const std::int64_t left = end - Utils::Clock::nowMicros();
        if (left <= 0)
            return ReadBufferStatus_TIMEOUT;
        changed.timedWait(static_cast<unsigned long>(left / 1000 + 1));
    }
    return ReadBufferStatus_OK;
}

ReadBufferStatus Capture::read(void* buffer, int size, std::int64_t* timestamp, int* length) {
    const std::int64_t end = Utils::Clock::nowMicros() + longestRead;
    if (waitWhilePaused(end) != ReadBufferStatus_OK)
        return ReadBufferStatus_TIMEOUT;
    const AutoLock reader(turn);
    if (!held) {
        const ReadBufferStatus status = fetch(end);
        if (status != ReadBufferStatus_OK)
            return status;
    }
    const std::size_t bytes = picture->bytesFor(held->used);
    *length = static_cast<int>(bytes);
    if (size < *length)
        return ReadBufferStatus_TOO_SMALL;
    *timestamp = held->micros;
    const bool whole =
        picture->make(buffers[held->index]->bytes(held->used), static_cast<std::byte*>(buffer));
    if (!whole)
        countBroken();
    giveBack();
    return whole ? ReadBufferStatus_OK : ReadBufferStatus_FAILED;
}

/// Waits for a frame and holds it. In every state but Streaming the wait ends at once, woken.
ReadBufferStatus Capture::fetch(std::int64_t end) {
    for (;;) {
        const std::int64_t left = end - Utils::Clock::nowMicros();
        if (left <= 0)
            return ReadBufferStatus_TIMEOUT;
        switch (frames->wait(static_cast<int>(left / 1000 + 1))) {
        case Linux::Kernel::Ready::Nothing:
            break;
        case Linux::Kernel::Ready::Woken:
            return stateStatus() == ReadBufferStatus_OK ? ReadBufferStatus_TIMEOUT : stateStatus();
        case Linux::Kernel::Ready::Frame: {
            const ReadBufferStatus taken = take();
            if (taken != ReadBufferStatus_TIMEOUT)
                return taken;
            break;
        }
        case Linux::Kernel::Ready::Broken: {
            // A node whose camera has gone is ready for ever.
            const ReadBufferStatus taken = take();
            if (taken != ReadBufferStatus_TIMEOUT)
                return taken;
            const AutoLock hold(lock);
            if (state == State::Streaming)
                changed.timedWait(brokenPauseMilliseconds);
            break;
        }
        }
    }
}

/// Takes the frame that is there. \return TIMEOUT when there is none
ReadBufferStatus Capture::take() {
    v4l2_buffer buffer = bufferNumbered(0);
    const int result = file->control(VIDIOC_DQBUF, buffer);
    if (result == -EAGAIN)
        return ReadBufferStatus_TIMEOUT;
    if (result == -ENODEV || result == -ENXIO || result == -ESHUTDOWN) {
        change(State::Gone);
        return ReadBufferStatus_DISCONNECTED;
    }
    if (result < 0 || buffer.index >= buffers.size()) {
        countBroken();
        return ReadBufferStatus_FAILED;
    }
    held = Frame{buffer.index, buffer.bytesused, microsOf(buffer)};
    if ((buffer.flags & V4L2_BUF_FLAG_ERROR) == 0)
        return ReadBufferStatus_OK;
    countBroken();
    giveBack();
    return ReadBufferStatus_FAILED;
}

/// Puts the frame's memory back into the driver's queue, which takes it without waiting for the camera.
void Capture::giveBack() {
    v4l2_buffer buffer = bufferNumbered(held->index);
    held.reset();
    if (file->control(VIDIOC_QBUF, buffer) == -ENODEV)
        change(State::Gone);
}

} // namespace Zentara::V4l2
