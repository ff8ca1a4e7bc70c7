#pragma once

#include <cstdint>
#include <optional>

#include "plugins/simulated/usb/control_table.h"
#include "plugins/simulated/usb/streaming_endpoint.h"
#include "plugins/simulated/usb/usb_faults.h"

namespace Zentara::Simulated {

/// The microphone's streaming interface: a millisecond of the tone in each packet, at its time. Samples are counted from 0 at each
/// start, and none is left out. Bound.
class Microphone final : public StreamingEndpoint {
public:
    explicit Microphone(const ControlTable& settings) : controls(settings) {}

    /// The rate, which is always the same one.
    /// \return as ControlTable::answer
    [[nodiscard]] static std::optional<Bytes> answer(const Setup& setup);

    /// As VideoStream::serve.
    std::optional<std::int64_t> serve(UsbCable& cable, UsbFaults& faults, std::int64_t now);

private:
    [[nodiscard]] Bytes nextPacket(UsbFaults& faults, std::size_t room);

    const ControlTable& controls;
    std::uint64_t sample = 0; ///< the next one
};

} // namespace Zentara::Simulated
