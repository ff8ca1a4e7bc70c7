#pragma once

#include <cstdint>
#include <deque>
#include <optional>

#include "plugins/simulated/usb/control_table.h"
#include "plugins/simulated/usb/usb_faults.h"
#include "plugins/simulated/usb/usb_ip.h"

namespace Zentara::Simulated {

/// The microphone's streaming interface: a millisecond of the tone in each packet, at its time. Samples are counted from 0 at each
/// start, and none is left out. Bound.
class Microphone final {
public:
    explicit Microphone(const ControlTable& settings) : controls(settings) {}

    /// The rate, which is always the same one.
    /// \return as ControlTable::answer
    [[nodiscard]] static std::optional<Bytes> answer(const Setup& setup);

    void queue(UsbRequest request) { waiting.push_back(std::move(request)); }
    /// \return whether such a request waited; it is forgotten then
    [[nodiscard]] bool unlink(std::uint32_t number);
    void stop() noexcept { playing = false; }

    /// As VideoStream::serve.
    std::optional<std::int64_t> serve(UsbCable& cable, UsbFaults& faults, std::int64_t now);

private:
    [[nodiscard]] Bytes nextPacket(UsbFaults& faults, std::size_t room);

    const ControlTable& controls;
    std::deque<UsbRequest> waiting;
    bool playing = false;
    bool silent = false;
    std::uint64_t sample = 0;
    std::int64_t due = 0;
};

} // namespace Zentara::Simulated
