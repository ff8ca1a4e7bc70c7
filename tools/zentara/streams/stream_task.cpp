#include "tools/zentara/streams/stream_task.h"

#include <algorithm>
#include <utility>

#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

#include "tools/zentara/text_columns.h"

namespace Zentara::Tool {

using Utils::Format;

namespace {

constexpr std::int64_t longestSilence = 5'000'000; ///< microseconds
constexpr int mostAtOnce = 120;                    ///< frames, then it is another stream's turn

/// "temperature, cyclic error: algorithm 3 is not known"
void printList(std::ostream& out, const char* what, const std::vector<std::string>& corrections) {
    const char* before = what;
    for (const std::string& one : corrections) {
        out << (before == what ? "         " : "") << before
            << printable(one.substr(0, one.find(": not applied")));
        before = ", ";
    }
    out << (corrections.empty() ? "" : "\n");
}

} // namespace

StreamTask::StreamTask(Stream opened, const Rules& wanted)
    : rules(wanted), source(std::move(opened)), came(source.info()) {}

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
    came.add(seen);
    last = seen;
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
    over = rules.most != 0 && taken() >= rules.most;
}

void StreamTask::commit() {
    for (const auto& file : files)
        file->commit();
}

void StreamTask::discard() noexcept {
    for (const auto& file : files)
        file->discard();
}

std::uint64_t StreamTask::taken() const noexcept {
    const std::uint64_t all = kind() == Kind::Audio ? came.samples() : came.frames();
    return rules.most == 0 ? all : std::min(all, rules.most);
}

void StreamTask::print(std::ostream& out) const {
    if (kind() == Kind::Audio)
        out << "sound    " << taken() << " samples of " << info().mode.channels << " channels at "
            << info().mode.rate << " Hz\n";
    else
        out << "frames   " << taken() << (rules.most == 0 ? "" : " of " + std::to_string(rules.most)) << ", "
            << came.dropped() << " dropped, " << fixed(came.framesPerSecond(), 1) << " frames/s\n";
    if (kind() == Kind::Depth && last) {
        out << "depth    " << came.nearestMillimetres() << " to " << came.farthestMillimetres() << " mm, "
            << fixed(100.0 * came.withoutDepth(), 1) << " % of the pixels without\n";
        printList(out, "corrected: ", last->corrections());
        printList(out, "not corrected: ", last->uncorrected());
    }
    for (const auto& file : files) {
        if (file->isThere())
            out << padded(file->label, 9) << printable(file->path()) << '\n';
    }
    if (cloud && kind() == Kind::Depth)
        cloud->print(out);
}

void StreamTask::fill(Json& json) const {
    if (kind() == Kind::Audio) {
        json["audio"] = {
            {"samples", taken()}, {"sampleRate", info().mode.rate}, {"channels", info().mode.channels}};
    } else {
        json["frames"] = {{"received", taken()}, {"dropped", came.dropped()}};
        if (rules.most != 0)
            json["frames"]["wanted"] = rules.most;
        json["seconds"] = came.seconds();
        json["framesPerSecond"] = came.framesPerSecond();
    }
    if (kind() == Kind::Depth)
        json["depth"] = {{"nearestMillimetres", came.nearestMillimetres()},
                         {"farthestMillimetres", came.farthestMillimetres()},
                         {"withoutDepth", came.withoutDepth()},
                         {"corrected", last ? Json(last->corrections()) : Json::array()},
                         {"uncorrected", last ? Json(last->uncorrected()) : Json::array()}};
    for (const auto& file : files) {
        if (file->isThere())
            json["files"][file->key] = file->path();
    }
    if (cloud && kind() == Kind::Depth)
        cloud->fill(json);
}

} // namespace Zentara::Tool
