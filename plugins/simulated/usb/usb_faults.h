#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Zentara::Simulated {

/// Thrown when a fault pulls the camera out.
struct Unplugged {};

/// What goes wrong with a camera at USB level. Each is a sentence "PLACE KIND [after N] [times N] [reason N]":
///
///     PLACE   unit       a SET or GET of the extension unit's value
///             length     a question for the length of one of the unit's controls
///             info       a question for what one of the unit's controls can
///             control    any other question or setting of the camera: exposure, brightness, volume...
///             probe      a question or proposal of a mode
///             commit     the choice of a mode
///             interface  the choice of an alternate setting
///             frame      a picture
///             sound      a packet of the microphone's
///     KIND    stall      refused
///             short      fewer bytes come than were asked; a picture ends in its middle
///             zero       as many bytes as were asked, all of them 0
///             silent     no answer, ever; no picture from there on
///             unplug     the camera is pulled out
///
/// "after N": so many go well first; "times N": so many go wrong then, all unless told; "reason N": the camera's code for why
/// it refused, 0 unless told.
class UsbFaults final {
public:
    enum class Place : std::uint8_t { Unit, Length, Info, Control, Probe, Commit, Interface, Frame, Sound };
    /// The last one is only thrown.
    enum class Kind : std::uint8_t { None, Stall, Short, Zero, Silent, Unplug };

    /// \throws std::invalid_argument that says what is wrong with the sentence
    void add(const std::string& sentence);

    /// Counts one more at this place, and says what goes wrong with it.
    /// \throws Unplugged
    [[nodiscard]] Kind next(Place place);
    /// The camera's code for the last thing that went wrong.
    [[nodiscard]] std::uint8_t reason() const noexcept { return lastReason; }

private:
    static constexpr std::size_t places = static_cast<std::size_t>(Place::Sound) + 1;

    struct Fault {
        Place place;
        Kind kind;
        std::uint32_t after = 0;
        std::uint32_t times = 0xFFFFFFFFU;
        std::uint8_t reason = 0;
    };

    std::vector<Fault> faults;
    std::uint32_t counts[places] = {};
    std::uint8_t lastReason = 0;
};

} // namespace Zentara::Simulated
