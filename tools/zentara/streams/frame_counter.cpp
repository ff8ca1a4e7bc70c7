#include "tools/zentara/streams/frame_counter.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace Zentara::Tool {
namespace {

constexpr std::int64_t microsPerSecond = 1'000'000;
constexpr std::int64_t longestGap = 3600 * microsPerSecond; // beyond it the clock has jumped

} // namespace

FrameCounter::FrameCounter(std::uint64_t framesWanted, int framesPerSecond)
    : wanted(framesWanted), nominal(std::max(1, framesPerSecond)) {}

/// Frames come a period apart; a longer gap tells how many are missing in it.
void FrameCounter::count(std::int64_t micros) noexcept {
    const auto gap =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(micros) - static_cast<std::uint64_t>(last));
    if (!fresh && gap >= 0 && gap <= longestGap) {
        const std::int64_t periods = (gap * nominal + microsPerSecond / 2) / microsPerSecond;
        lost += static_cast<std::uint64_t>(std::max<std::int64_t>(periods - 1, 0));
        total += gap;
        ++intervals;
    }
    fresh = false;
    last = micros;
    ++taken;
}

double FrameCounter::seconds() const noexcept { return static_cast<double>(total) / microsPerSecond; }

double FrameCounter::rate() const noexcept {
    return total > 0 ? static_cast<double>(intervals) / seconds() : 0.0;
}

void FrameCounter::print(std::ostream& out) const {
    out << "frames   " << taken;
    if (wanted != 0)
        out << " of " << wanted;
    out << ", " << lost << " dropped, " << fixed(rate(), 1) << " frames/s\n";
}

void FrameCounter::fill(Json& stream) const {
    stream["frames"] = {{"received", taken}, {"dropped", lost}};
    if (wanted != 0)
        stream["frames"]["wanted"] = wanted;
    stream["seconds"] = seconds();
    stream["framesPerSecond"] = rate();
}

std::string fixed(double value, int digits) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(digits) << value;
    return text.str();
}

} // namespace Zentara::Tool
