#pragma once

#include <cstdint>
#include <future>
#include <optional>

#include "plugins/simulated/usb/camera_shape.h"
#include "plugins/simulated/usb/control_table.h"
#include "plugins/simulated/usb/pictures.h"
#include "plugins/simulated/usb/streaming_endpoint.h"
#include "plugins/simulated/usb/usb_faults.h"

namespace Zentara::Simulated {

/// A streaming interface: the agreement on a mode, and pictures as payloads for the requests that wait at its endpoint.
/// Pictures are numbered from 0 at each start. The next one begins when it is due and the host has the last one whole:
/// what is missing at the other end, the host has lost. Bound.
class VideoStream final : public StreamingEndpoint {
public:
    VideoStream(const StreamShape& shape, bool isochronous, const Pictures& pictures,
                const ControlTable& controls);

    /// A question or proposal of a mode, or its choice.
    /// \return as ControlTable::answer
    [[nodiscard]] std::optional<Bytes> answer(const Setup& setup, const Bytes& data);
    [[nodiscard]] static bool isCommit(const Setup& setup) noexcept;

    /// Answers what can be answered by now.
    /// \return microseconds of the monotonic clock at which there is more to do; nothing while nobody waits
    /// \throws Unplugged when a fault says so
    std::optional<std::int64_t> serve(UsbCable& cable, UsbFaults& faults, std::int64_t now);

private:
    struct Mode {
        std::uint8_t format = 1; ///< counted from 1, as in the descriptors
        std::uint8_t size = 1;
        std::uint32_t interval = 0;
    };

    [[nodiscard]] Mode adopt(const Bytes& wanted) const;
    [[nodiscard]] Bytes encode(const Mode& mode) const;
    [[nodiscard]] const PictureSize& sizeOf(const Mode& mode) const;
    void start();
    void draw();
    [[nodiscard]] UsbFaults::Kind begin(UsbFaults& faults, std::int64_t now);
    void fill(UsbCable& cable, const UsbRequest& request);
    [[nodiscard]] Bytes nextPayload(std::size_t room);
    [[nodiscard]] bool pictureIsOver() const noexcept { return position == picture.size(); }

    const StreamShape shape;
    const bool isochronous;
    const Pictures& pictures;
    const ControlTable& controls;
    Mode proposed;
    Mode committed;
    std::uint32_t number = 0;   ///< of the next picture
    std::future<Bytes> drawing; ///< the next picture: a thread of its own makes it, for that takes long
    Bytes picture;
    std::size_t position = 0; ///< of the picture's next byte
    bool odd = false;         ///< what tells two pictures that follow each other apart
    std::uint32_t stamp = 0;
};

} // namespace Zentara::Simulated
