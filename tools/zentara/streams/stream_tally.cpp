#include "tools/zentara/streams/stream_tally.h"

#include <algorithm>
#include <string>
#include <vector>

#include "tools/zentara/text_columns.h"

namespace Zentara::Tool {
namespace {

constexpr std::int64_t microsPerSecond = 1'000'000;
constexpr std::int64_t longestGap = 3600 * microsPerSecond; // beyond it the clock has jumped

/// "temperature, cyclic error (algorithm 3 is not known)"
std::string joined(const std::vector<std::string>& corrections) {
    std::string text;
    for (const std::string& one : corrections) {
        const std::size_t colon = one.find(": ");
        const std::string why = colon == std::string::npos ? std::string() : one.substr(colon + 2);
        text += (text.empty() ? "" : ", ") + one.substr(0, colon);
        if (!why.empty() && why != "not applied")
            text += " (" + why + ")";
    }
    return text;
}

} // namespace

StreamTally::StreamTally(const Host::StreamInfo& stream, std::uint64_t most)
    : mode(stream.mode), unit(stream.millimetresPerUnit), wanted(most) {}

void StreamTally::count(const Host::Frame& frame) {
    if (mode.kind == Host::Kind::Audio) {
        const int sample = std::max(1, mode.channels * ((mode.bitsPerSample + 7) / 8));
        const std::uint64_t samples = frame.bytes().size() / static_cast<std::size_t>(sample);
        taken += wanted == 0 ? samples : std::min(samples, wanted - taken);
        return;
    }
    if (mode.kind == Host::Kind::Depth)
        measure(frame);
    const auto gap = static_cast<std::int64_t>(static_cast<std::uint64_t>(frame.deviceMicros()) -
                                               static_cast<std::uint64_t>(last));
    if (taken != 0 && !frame.isFirstAfterReturn() && gap >= 0 && gap <= longestGap) {
        total += gap;
        ++intervals;
    }
    last = frame.deviceMicros();
    dropped += frame.droppedBefore();
    ++taken;
}

void StreamTally::measure(const Host::Frame& frame) {
    for (const std::uint16_t value : frame.depth()) {
        if (value == 0) {
            ++zeros;
            continue;
        }
        low = std::min(low, value);
        high = std::max(high, value);
    }
    pixels += frame.depth().size();
    lastDepth = frame;
}

double StreamTally::seconds() const noexcept { return static_cast<double>(total) / microsPerSecond; }
double StreamTally::rate() const noexcept {
    return total > 0 ? static_cast<double>(intervals) / seconds() : 0.0;
}
double StreamTally::blind() const noexcept {
    return pixels == 0 ? 0.0 : static_cast<double>(zeros) / static_cast<double>(pixels);
}

void StreamTally::print(std::ostream& out) const {
    if (mode.kind == Host::Kind::Audio) {
        out << "sound    " << taken << " samples of " << mode.channels << " channels at " << mode.rate
            << " Hz\n";
        return;
    }
    out << "frames   " << taken << (wanted == 0 ? "" : " of " + std::to_string(wanted)) << ", " << dropped
        << " dropped, " << fixed(rate(), 1) << " frames/s\n";
    if (!lastDepth)
        return;
    const std::vector<std::string> corrected = lastDepth->corrections();
    const std::vector<std::string> uncorrected = lastDepth->uncorrected();
    out << "depth    " << nearest() << " to " << farthest() << " mm, " << fixed(100.0 * blind(), 1)
        << " % of the pixels without\n";
    if (!corrected.empty())
        out << "         corrected: " << joined(corrected) << '\n';
    if (!uncorrected.empty())
        out << "         not corrected: " << joined(uncorrected) << '\n';
}

void StreamTally::fill(Json& stream) const {
    if (mode.kind == Host::Kind::Audio) {
        stream["audio"] = {{"samples", taken}, {"sampleRate", mode.rate}, {"channels", mode.channels}};
        return;
    }
    stream["frames"] = {{"received", taken}, {"dropped", dropped}};
    if (wanted != 0)
        stream["frames"]["wanted"] = wanted;
    stream["seconds"] = seconds();
    stream["framesPerSecond"] = rate();
    const std::vector<std::string> none;
    if (mode.kind == Host::Kind::Depth)
        stream["depth"] = {{"nearestMillimetres", nearest()},
                           {"farthestMillimetres", farthest()},
                           {"withoutDepth", blind()},
                           {"corrected", lastDepth ? lastDepth->corrections() : none},
                           {"uncorrected", lastDepth ? lastDepth->uncorrected() : none}};
}

} // namespace Zentara::Tool
