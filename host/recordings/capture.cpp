#include <zentara/host/capture.h>

#include <algorithm>
#include <utility>

#include <zentara/host/failure.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

#include "host/streams/silence.h"

namespace Zentara::Host {
namespace {

using Utils::Format;

constexpr int mostAtOnce = 120; ///< frames, then it is another stream's turn

} // namespace

Capture::Capture(Stream opened, const CaptureRules& wanted)
    : rules(wanted), source(std::move(opened)), came(source.info()) {}

Capture::~Capture() = default;

void Capture::writeTo(std::unique_ptr<FrameFile> file) { files.push_back(std::move(file)); }

void Capture::recordTo(Recorder* recording, std::size_t index) {
    recorder = recording;
    number = index;
}

void Capture::showTo(Viewer shown) { viewer = std::move(shown); }

void Capture::start() {
    source.start();
    heardAt = Utils::Clock::nowMicros();
}

void Capture::take() {
    const Stream::State state = source.state(); // before the last frame of a stream that ends
    std::optional<Frame> frame;
    for (int round = 0; round < mostAtOnce && !over && (frame = source.poll()); ++round)
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
    if (now - heardAt > std::chrono::microseconds(rules.longestSilence).count())
        throw silenceOf(source.label(), source.info(), rules.longestSilence, units());
}

void Capture::put(const Frame& frame) {
    heardAt = Utils::Clock::nowMicros();
    const Frame seen = rules.corrects && frame.kind() == Kind::Depth ? frame.corrected() : frame;
    came.add(seen);
    latest = seen;
    if (viewer)
        viewer(seen);
    try {
        if (recorder != nullptr)
            recorder->add(number, frame);
        for (const auto& file : files)
            file->take(frame, seen);
    } catch (const Failure&) {
        unwritable = true;
        throw;
    }
    over = rules.most != 0 && taken() >= rules.most;
}

void Capture::commit() {
    for (const auto& file : files)
        file->commit();
}

void Capture::discard() noexcept {
    for (const auto& file : files)
        file->discard();
}

std::uint64_t Capture::taken() const noexcept {
    const bool isSound = info().mode.kind == Kind::Audio;
    const std::uint64_t all = isSound ? came.samples() : came.frames();
    return rules.most == 0 ? all : std::min(all, rules.most);
}

} // namespace Zentara::Host
