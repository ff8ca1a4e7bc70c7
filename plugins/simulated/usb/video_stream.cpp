#include "plugins/simulated/usb/video_stream.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "plugins/simulated/usb/descriptors.h"

namespace Zentara::Simulated {
namespace {

constexpr std::uint8_t probeSelector = 1;
constexpr std::uint8_t commitSelector = 2;
constexpr std::size_t modeBytes = 34;
constexpr std::size_t leastModeBytes = 26; // of the class's first version
constexpr std::int64_t intervalsPerMicrosecond = 10;
constexpr std::int64_t lookAgainMicros = 2000; // while a picture is being drawn

constexpr std::size_t payloadHeaderBytes = 6;
enum PayloadBits : std::uint8_t {
    OddPicture = 0x01,
    EndOfPicture = 0x02,
    HasTimeStamp = 0x04,
    EndOfHeader = 0x80
};

void put(Bytes& bytes, std::uint32_t value, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        bytes.push_back(static_cast<std::uint8_t>(value >> 8 * i));
}

std::uint32_t nearestInterval(std::uint32_t wanted) {
    const auto distance = [wanted](std::uint32_t interval) {
        return std::abs(std::int64_t{interval} - std::int64_t{wanted});
    };
    return *std::min_element(
        std::begin(pictureIntervals), std::end(pictureIntervals),
        [&](std::uint32_t left, std::uint32_t right) { return distance(left) < distance(right); });
}

} // namespace

VideoStream::VideoStream(const StreamShape& offered, bool isIsochronous, const Pictures& seen,
                         const ControlTable& settings)
    : shape(offered), isochronous(isIsochronous), pictures(seen), controls(settings) {
    proposed.interval = pictureIntervals[0];
    committed = proposed;
}

bool VideoStream::isCommit(const Setup& setup) noexcept { return setup.value >> 8 == commitSelector; }

std::optional<Bytes> VideoStream::answer(const Setup& setup, const Bytes& data) {
    const bool commit = isCommit(setup);
    if (!commit && setup.value >> 8 != probeSelector)
        return std::nullopt;
    switch (setup.request) {
    case SetCur:
        if (data.size() < leastModeBytes)
            return std::nullopt;
        proposed = adopt(data);
        if (commit) {
            committed = proposed;
            stop();
        }
        return Bytes();
    case GetCur:
        return encode(commit ? committed : proposed);
    case GetMin:
    case GetMax:
        return encode(proposed);
    case GetDef:
        return encode({1, 1, pictureIntervals[0]});
    case GetLen:
        return Bytes{modeBytes, 0};
    case GetInfo:
        return Bytes{3}; // can be read and set
    default:
        return std::nullopt;
    }
}

/// The mode that comes nearest to the wanted one.
VideoStream::Mode VideoStream::adopt(const Bytes& wanted) const {
    Mode mode;
    mode.format = std::clamp<std::uint8_t>(wanted[2], 1, static_cast<std::uint8_t>(shape.formats.size()));
    mode.size = std::clamp<std::uint8_t>(
        wanted[3], 1, static_cast<std::uint8_t>(shape.formats[mode.format - 1U].sizes.size()));
    std::uint32_t interval = 0;
    for (std::size_t i = 8; i-- > 4;)
        interval = interval << 8 | wanted[i];
    mode.interval = nearestInterval(interval);
    return mode;
}

const PictureSize& VideoStream::sizeOf(const Mode& mode) const {
    return shape.formats[mode.format - 1U].sizes[mode.size - 1U];
}

Bytes VideoStream::encode(const Mode& mode) const {
    Bytes bytes{1, 0, mode.format, mode.size}; // the host chooses the interval
    put(bytes, mode.interval, 4);
    put(bytes, 0, 10); // key frames and compression: the camera's own
    put(bytes, static_cast<std::uint32_t>(sizeOf(mode).bytes()), 4);
    put(bytes, isochronous ? isochronousPayload : bulkPayload, 4);
    put(bytes, clockFrequency, 4);
    put(bytes, 3, 1); // payloads say which picture they are of, and which is its last
    put(bytes, 1, 3); // version of the payload's format
    return bytes;
}

std::optional<std::int64_t> VideoStream::serve(UsbCable& cable, UsbFaults& faults, std::int64_t now) {
    while (!waiting.empty()) {
        if (begins(now))
            start();
        if (silent)
            return std::nullopt;
        if (pictureIsOver()) {
            if (now < due)
                return due;
            if (drawing.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
                return now + lookAgainMicros;
            if (begin(faults, now) == UsbFaults::Kind::Stall) {
                cable.answer(waiting.front(), UsbStatus::Stalled, {});
                waiting.pop_front();
            }
            continue;
        }
        fill(cable, waiting.front());
        waiting.pop_front();
    }
    return std::nullopt;
}

void VideoStream::start() {
    number = 0;
    picture.clear();
    position = 0;
    draw();
}

void VideoStream::draw() {
    const Coding coding = shape.formats[committed.format - 1U].coding;
    drawing = std::async(std::launch::async, [this, coding, size = sizeOf(committed), number = number,
                                              brightness = controls.brightness()] {
        return pictures.draw(coding, size, number, brightness);
    });
}

UsbFaults::Kind VideoStream::begin(UsbFaults& faults, std::int64_t now) {
    const UsbFaults::Kind fault = faults.next(UsbFaults::Place::Frame);
    silent = fault == UsbFaults::Kind::Silent;
    picture = drawing.get();
    if (fault == UsbFaults::Kind::Stall || fault == UsbFaults::Kind::Silent)
        picture.clear();
    if (fault == UsbFaults::Kind::Short)
        picture.resize(picture.size() / 2);
    ++number;
    draw();
    position = 0;
    odd = !odd;
    stamp = static_cast<std::uint32_t>(now);
    // A host that is slow gets fewer pictures, not all at once.
    due = std::max(due + committed.interval / intervalsPerMicrosecond, now);
    return fault;
}

void VideoStream::fill(UsbCable& cable, const UsbRequest& request) {
    if (request.packets.empty()) {
        // A payload ends with the request or at its greatest length.
        if (request.length < bulkPayload)
            cable.answer(request, UsbStatus::Stalled, {});
        else
            cable.answer(request, UsbStatus::Ok, nextPayload(bulkPayload));
        return;
    }
    PacketAnswers packets;
    for (const UsbRequest::Packet& packet : request.packets)
        packets.push_back(pictureIsOver() ? Bytes() : nextPayload(packet.length));
    cable.answer(request, packets);
}

Bytes VideoStream::nextPayload(std::size_t room) {
    if (room <= payloadHeaderBytes)
        return {};
    const std::size_t count = std::min(room - payloadHeaderBytes, picture.size() - position);
    const bool last = position + count == picture.size();
    Bytes payload;
    payload.reserve(payloadHeaderBytes + count);
    payload.push_back(payloadHeaderBytes);
    payload.push_back(static_cast<std::uint8_t>(EndOfHeader | HasTimeStamp | (odd ? OddPicture : 0) |
                                                (last ? EndOfPicture : 0)));
    put(payload, stamp, 4);
    const auto first = picture.begin() + static_cast<std::ptrdiff_t>(position);
    payload.insert(payload.end(), first, first + static_cast<std::ptrdiff_t>(count));
    position += count;
    return payload;
}

} // namespace Zentara::Simulated
