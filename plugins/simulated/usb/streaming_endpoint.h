#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <utility>

#include "plugins/simulated/usb/usb_ip.h"

namespace Zentara::Simulated {

/// The camera's end of a stream: the requests that wait there for bytes, and when the next bytes are due. Bound.
class StreamingEndpoint {
public:
    /// Room for bytes; it waits its turn.
    void queue(UsbRequest request) { waiting.push_back(std::move(request)); }

    /// \return whether such a request waited; it is forgotten then
    [[nodiscard]] bool unlink(std::uint32_t number) {
        return std::erase_if(waiting, [number](const UsbRequest& one) { return one.number == number; }) != 0;
    }

    /// The host is done: with the next request the stream begins anew.
    void stop() noexcept { playing = false; }

protected:
    ~StreamingEndpoint() = default;

    /// Called while somebody waits. \return whether the stream begins anew, with bytes that are due now
    [[nodiscard]] bool begins(std::int64_t now) noexcept {
        if (std::exchange(playing, true))
            return false;
        silent = false;
        due = now;
        return true;
    }

    std::deque<UsbRequest> waiting;
    bool silent = false;  ///< by a fault, until the stream begins anew
    std::int64_t due = 0; ///< when the next bytes are, in microseconds of the monotonic clock

private:
    bool playing = false;
};

} // namespace Zentara::Simulated
