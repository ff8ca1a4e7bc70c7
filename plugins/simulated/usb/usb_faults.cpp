#include "plugins/simulated/usb/usb_faults.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <stdexcept>

namespace Zentara::Simulated {
namespace {

constexpr std::array placeNames{"unit",   "length",    "info",  "control", "probe",
                                "commit", "interface", "frame", "sound"};
constexpr std::array kindNames{"stall", "short", "zero", "silent", "unplug"}; // from Kind::Stall on

template<std::size_t Count>
std::size_t indexOf(const std::array<const char*, Count>& names, const std::string& word,
                    const std::string& sentence) {
    const auto found = std::find(names.begin(), names.end(), word);
    if (found == names.end())
        throw std::invalid_argument("fault '" + sentence + "': unknown word '" + word + "'");
    return static_cast<std::size_t>(found - names.begin());
}

std::uint32_t countIn(std::istream& words, const std::string& sentence) {
    std::uint32_t count = 0;
    if (!(words >> count))
        throw std::invalid_argument("fault '" + sentence + "': a number is missing at its end");
    return count;
}

} // namespace

void UsbFaults::add(const std::string& sentence) {
    std::istringstream words(sentence);
    std::string place;
    std::string kind;
    words >> place >> kind;
    Fault fault{static_cast<Place>(indexOf(placeNames, place, sentence)),
                static_cast<Kind>(indexOf(kindNames, kind, sentence) + 1)};
    for (std::string option; words >> option;) {
        if (option == "after")
            fault.after = countIn(words, sentence);
        else if (option == "times")
            fault.times = countIn(words, sentence);
        else if (option == "reason")
            fault.reason = static_cast<std::uint8_t>(countIn(words, sentence));
        else
            throw std::invalid_argument("fault '" + sentence + "': unknown word '" + option + "'");
    }
    faults.push_back(fault);
}

UsbFaults::Kind UsbFaults::next(Place place) {
    const std::uint32_t count = counts[static_cast<std::size_t>(place)]++;
    for (const Fault& fault : faults) {
        if (fault.place != place || count < fault.after || count - fault.after >= fault.times)
            continue;
        if (fault.kind == Kind::Unplug)
            throw Unplugged();
        lastReason = fault.reason;
        return fault.kind;
    }
    return Kind::None;
}

} // namespace Zentara::Simulated
