#include <zentara/host/recording.h>

#include <algorithm>
#include <cmath>

#include <zentara/host/failure.h>
#include <zentara/host/user_log.h>
#include <zentara/utils/format.h>

#include "host/cameras/camera_choice.h"
#include "host/recordings/played_camera.h"
#include "host/recordings/recording_format.h"
#include "host/recordings/recording_reader.h"
#include "host/streams/frame_draft.h"

namespace Zentara::Host {
namespace {

using Utils::Format;

/// Straight into the frame's own memory.
Frame readFrame(RecordingReader& reader, const FrameHead& head, std::shared_ptr<const StreamContext> context,
                std::uint64_t number, const SensorValueArray& temperatures) {
    FrameDraft draft(std::move(context), head.length, "read recording '" + reader.name() + "'");
    reader.read(draft.bytes());
    FrameData& fields = draft.fields();
    fields.number = number;
    fields.deviceMicros = head.micros;
    fields.isFirstAfterReturn = (head.flags & RecordingFormat::Flag_AFTER_RETURN) != 0;
    fields.temperatureCount = std::min(temperatures.size(), FrameData::mostTemperatures);
    std::copy_n(temperatures.values.begin(), fields.temperatureCount, fields.temperatures.begin());
    return std::move(draft).finish(head.length);
}

} // namespace

struct Recording::Impl {
    explicit Impl(const std::string& path) : reader(path), numbers(reader.streams().size()) {
        for (const StreamInfo& info : reader.streams())
            contexts.push_back(std::make_shared<StreamContext>(info));
    }

    [[nodiscard]] std::optional<FrameHead> nextHead() {
        const auto head = reader.next();
        if (head)
            ++numbers[head->stream];
        return head;
    }
    [[nodiscard]] Frame read(const FrameHead& head) {
        return readFrame(reader, head, contexts[head.stream], numbers[head.stream] - 1,
                         reader.temperatures(head.stream));
    }
    void requireStream(std::size_t stream) const {
        if (stream >= contexts.size())
            throw Failure(Failure::Usage, Format("recording '%' has no stream %") % reader.name() % stream,
                          Format("it has %, counted from 0") % contexts.size());
    }

    /// Where a frame stands.
    struct Entry {
        FrameHead head;
        std::size_t readings; ///< index of its temperatures
    };
    void index();
    [[nodiscard]] Frame readAt(std::size_t stream, std::uint64_t number);

    RecordingReader reader;
    std::vector<std::shared_ptr<const StreamContext>> contexts; ///< one a stream
    std::vector<std::uint64_t> numbers;                         ///< of the next frame, one a stream

    // Once a frame was asked for by number or time:
    std::unique_ptr<RecordingReader> finder;
    std::vector<std::vector<Entry>> entries; ///< of each stream, by number
    std::vector<SensorValueArray> readings;
    std::string damage; ///< what ended them before the recording's end; empty when nothing did
};

/// The heads of all frames, until the end or the damage.
void Recording::Impl::index() {
    if (finder)
        return;
    auto made = std::make_unique<RecordingReader>(reader.name());
    if (made->streams().size() != contexts.size())
        throw Failure(Failure::Failed, "recording '" + reader.name() + "' has been replaced by another one");
    entries.assign(contexts.size(), {});
    std::vector<std::size_t> latest(contexts.size(), 0);
    readings.assign(1, {});
    damage.clear();
    try {
        while (const auto head = made->next()) {
            std::size_t& now = latest[head->stream];
            if (!(made->temperatures(head->stream) == readings[now])) {
                now = readings.size();
                readings.push_back(made->temperatures(head->stream));
            }
            entries[head->stream].push_back({*head, now});
        }
    } catch (const Failure& failure) {
        damage = failure.what();
    }
    finder = std::move(made);
}

Frame Recording::Impl::readAt(std::size_t stream, std::uint64_t number) {
    const Entry& entry = entries[stream][static_cast<std::size_t>(number)];
    finder->seek(entry.head.place);
    const auto head = finder->next();
    if (!head || head->stream != stream || head->length != entry.head.length)
        throw Failure(Failure::Failed, "recording '" + reader.name() + "' has changed meanwhile");
    return readFrame(*finder, *head, contexts[stream], number, readings[entry.readings]);
}

Recording::Recording(const std::string& path) {
    beginUserLog();
    impl = std::make_unique<Impl>(path);
}
Recording::Recording(Recording&&) noexcept = default;
Recording& Recording::operator=(Recording&&) noexcept = default;
Recording::~Recording() = default;

const std::vector<StreamInfo>& Recording::streams() const& noexcept { return impl->reader.streams(); }

int Recording::version() const noexcept { return impl->reader.version(); }

std::vector<CameraInfo> Recording::cameras() const { return recordedCameras(streams()); }

std::vector<CameraInfo> Recording::choose(const std::vector<std::string>& names) const {
    return chooseCameras(cameras(), names, "recorded");
}

Camera Recording::camera(const std::string& name, const PlayOptions& options) const {
    return camera(chooseCamera(cameras(), name, "recorded"), options);
}

Camera Recording::camera(const CameraInfo& camera, const PlayOptions& options) const {
    if (!(options.speed > 0) || !std::isfinite(options.speed))
        throw Failure(Failure::Usage, Format("cannot play recording '%' at % times its speed") %
                                          impl->reader.name() % options.speed);
    for (CameraInfo& one : cameras()) {
        if (one.path == camera.path)
            return Camera(
                std::make_shared<PlayedCamera>(impl->reader.name(), streams(), std::move(one), options));
    }
    throw Failure(Failure::NoDevice,
                  Format("recording '%' has no camera at '%'") % impl->reader.name() % camera.path);
}

std::optional<RecordedFrame> Recording::next() {
    const auto head = impl->nextHead();
    if (!head)
        return std::nullopt;
    return RecordedFrame{head->stream, impl->read(*head)};
}

std::optional<Frame> Recording::next(std::size_t stream) {
    impl->requireStream(stream);
    while (const auto head = impl->nextHead()) {
        if (head->stream == stream)
            return impl->read(*head);
    }
    return std::nullopt;
}

void Recording::rewind() {
    impl->reader.rewind();
    impl->numbers.assign(impl->numbers.size(), 0);
}

std::uint64_t Recording::count(std::size_t stream) {
    impl->requireStream(stream);
    impl->index();
    return impl->entries[stream].size();
}

Frame Recording::at(std::size_t stream, std::uint64_t number) {
    const std::uint64_t frames = count(stream);
    if (number >= frames)
        throw Failure(
            Failure::Usage,
            Format("recording '%' has no frame % of stream %") % impl->reader.name() % number % stream,
            Format("it has %, counted from 0%") % frames % (impl->damage.empty() ? "" : "; " + impl->damage));
    return impl->readAt(stream, number);
}

Frame Recording::atTime(std::size_t stream, std::int64_t micros) {
    if (count(stream) == 0)
        return at(stream, 0); // which says so
    // Times are the file's and may be anything: distances are taken without a sign.
    const auto distance = [micros](const Impl::Entry& entry) {
        const std::int64_t time = entry.head.micros;
        return time > micros ? static_cast<std::uint64_t>(time) - static_cast<std::uint64_t>(micros)
                             : static_cast<std::uint64_t>(micros) - static_cast<std::uint64_t>(time);
    };
    const auto& entries = impl->entries[stream];
    const auto nearest = std::min_element(
        entries.begin(), entries.end(),
        [&](const Impl::Entry& left, const Impl::Entry& right) { return distance(left) < distance(right); });
    return impl->readAt(stream, static_cast<std::uint64_t>(nearest - entries.begin()));
}

} // namespace Zentara::Host
