#include "tools/zentara/streams/stream_task.h"

#include <utility>

#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

#include "tools/zentara/text_columns.h"

namespace Zentara::Tool {

using Utils::Format;

namespace {

constexpr std::int64_t longestSilence = 5'000'000; ///< microseconds
constexpr int mostAtOnce = 120;                    ///< frames, then it is another stream's turn

} // namespace

StreamTask::StreamTask(Stream opened, const Rules& wanted)
    : rules(wanted), source(std::move(opened)), tally(source.info(), wanted.most) {}

void StreamTask::recordTo(Recorder* recording, std::size_t number) {
    recorder = recording;
    index = number;
}

void StreamTask::start() {
    source.start();
    heardAt = Utils::Clock::nowMicros();
}

void StreamTask::take() {
    const Stream::State state = source.state(); // before the last frame of a stream that ends
    std::optional<Frame> frame;
    for (int taken = 0; taken < mostAtOnce && !over && (frame = source.poll()); ++taken)
        put(*frame);
    const std::int64_t now = Utils::Clock::nowMicros();
    if (state != Stream::State::Streaming)
        heardAt = now;
    if (over || frame)
        return;
    if (state == Stream::State::Ended && !rules.mayEnd)
        throw Failure(Failure::Failed, Format("% ended its stream after % units, before all had come") %
                                           source.label() % units());
    over = state == Stream::State::Ended;
    if (now - heardAt > longestSilence)
        throw Failure(Failure::TimedOut, Format("nothing came from % for % s; % frames had come") %
                                             source.label() % (longestSilence / 1'000'000) % units());
}

void StreamTask::put(const Frame& frame) {
    heardAt = Utils::Clock::nowMicros();
    const Frame seen = rules.corrects && frame.kind() == Kind::Depth ? frame.corrected() : frame;
    tally.count(seen);
    if (cloud)
        cloud->take(seen);
    try {
        if (recorder != nullptr)
            recorder->add(index, frame);
        for (const auto& file : files)
            file->take(frame, seen);
    } catch (const Failure&) {
        unwritable = true;
        throw;
    }
    over = tally.full();
}

void StreamTask::commit() {
    for (const auto& file : files)
        file->commit();
}

void StreamTask::discard() noexcept {
    for (const auto& file : files)
        file->discard();
}

void StreamTask::print(std::ostream& out) const {
    tally.print(out);
    for (const auto& file : files) {
        if (file->isThere())
            out << padded(file->label, 9) << printable(file->path()) << '\n';
    }
    if (cloud && info().mode.kind == Kind::Depth)
        cloud->print(out);
}

void StreamTask::fill(Json& json) const {
    tally.fill(json);
    for (const auto& file : files) {
        if (file->isThere())
            json["files"][file->key] = file->path();
    }
    if (cloud && info().mode.kind == Kind::Depth)
        cloud->fill(json);
}

} // namespace Zentara::Tool
