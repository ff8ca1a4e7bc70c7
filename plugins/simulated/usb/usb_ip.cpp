#include "plugins/simulated/usb/usb_ip.h"

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Zentara::Simulated {
namespace {

// Every number of a message is big-endian; only the eight bytes of a setup are as on the wire.
enum Command : std::uint32_t { Submit = 1, Unlink = 2, SubmitAnswer = 3, UnlinkAnswer = 4 };

constexpr std::size_t commandAt = 0;
constexpr std::size_t numberAt = 4;
constexpr std::size_t directionAt = 12;
constexpr std::size_t endpointAt = 16;
constexpr std::size_t unlinkOfAt = 20;
constexpr std::size_t lengthAt = 24;
constexpr std::size_t packetsAt = 32;
constexpr std::size_t setupAt = 40;

constexpr std::uint32_t mostBytes = 16U << 20;
constexpr std::uint32_t mostPackets = 1024;
constexpr std::size_t packetBytes = 16;
constexpr std::uint32_t noPackets = 0xFFFFFFFF; // what some senders write for 0

std::uint32_t load(const std::uint8_t* at) {
    return std::uint32_t{at[0]} << 24 | std::uint32_t{at[1]} << 16 | std::uint32_t{at[2]} << 8 | at[3];
}

std::uint16_t loadLittle(const std::uint8_t* at) { return static_cast<std::uint16_t>(at[0] | at[1] << 8); }

void append(Bytes& message, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        message.push_back(static_cast<std::uint8_t>(value >> shift));
}

Bytes answerHeader(Command command, std::uint32_t number, UsbStatus status, std::size_t length,
                   std::size_t packets) {
    Bytes message;
    for (const std::uint32_t field :
         {std::uint32_t{command}, number, 0U, 0U, 0U, static_cast<std::uint32_t>(status),
          static_cast<std::uint32_t>(length), 0U, static_cast<std::uint32_t>(packets), 0U, 0U, 0U})
        append(message, field);
    return message;
}

[[noreturn]] void fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

} // namespace

UsbCable::~UsbCable() { ::close(socket); }

UsbCable::Event UsbCable::next(int milliseconds) {
    pollfd wanted{socket, POLLIN, 0};
    const int ready = ::poll(&wanted, 1, milliseconds);
    if (ready < 0 && errno != EINTR)
        fail("waiting for the host");
    Event event;
    if (ready <= 0)
        return event;
    Header header{};
    event.kind = Event::Kind::Gone;
    if (!receive(header.data(), header.size()))
        return event;
    event.number = load(&header[numberAt]);
    switch (load(&header[commandAt])) {
    case Submit:
        if (receiveRequest(header, event.request))
            event.kind = Event::Kind::Request;
        return event;
    case Unlink:
        event.kind = Event::Kind::Unlink;
        event.unlinkOf = load(&header[unlinkOfAt]);
        return event;
    default:
        throw std::runtime_error("the host sent the unknown command " +
                                 std::to_string(load(&header[commandAt])));
    }
}

/// False when the host has gone.
bool UsbCable::receive(std::uint8_t* bytes, std::size_t count) {
    while (count > 0) {
        const ssize_t got = ::recv(socket, bytes, count, 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0 && errno != ECONNRESET)
            fail("reading from the host");
        if (got <= 0)
            return false;
        bytes += got;
        count -= static_cast<std::size_t>(got);
    }
    return true;
}

bool UsbCable::receiveRequest(const Header& header, UsbRequest& request) {
    request.number = load(&header[numberAt]);
    request.in = load(&header[directionAt]) == 1;
    request.endpoint = load(&header[endpointAt]);
    request.length = load(&header[lengthAt]);
    const std::uint32_t named = load(&header[packetsAt]);
    const std::uint32_t count = named == noPackets ? 0 : named;
    if (request.length > mostBytes || count > mostPackets)
        throw std::runtime_error("the host sent a request of " + std::to_string(request.length) +
                                 " bytes in " + std::to_string(count) + " packets");
    const std::uint8_t* const setup = &header[setupAt];
    request.setup = {setup[0], setup[1], loadLittle(setup + 2), loadLittle(setup + 4), loadLittle(setup + 6)};
    request.data.resize(request.in ? 0 : request.length);
    if (!receive(request.data.data(), request.data.size()))
        return false;
    Bytes packets(count * packetBytes);
    if (!receive(packets.data(), packets.size()))
        return false;
    for (std::size_t at = 0; at < packets.size(); at += packetBytes)
        request.packets.push_back({load(&packets[at]), load(&packets[at + 4])});
    return true;
}

void UsbCable::answer(const UsbRequest& request, UsbStatus status, const Bytes& data, std::size_t taken) {
    Bytes message = answerHeader(SubmitAnswer, request.number, status, request.in ? data.size() : taken, 0);
    message.insert(message.end(), data.begin(), data.end());
    send(message);
}

void UsbCable::answer(const UsbRequest& request, const PacketAnswers& packets) {
    std::size_t total = 0;
    for (const Bytes& packet : packets)
        total += packet.size();
    Bytes message = answerHeader(SubmitAnswer, request.number, UsbStatus::Ok, total, packets.size());
    for (const Bytes& packet : packets)
        message.insert(message.end(), packet.begin(), packet.end());
    for (std::size_t i = 0; i < packets.size(); ++i) {
        for (const std::size_t field :
             {std::size_t{request.packets[i].offset}, std::size_t{request.packets[i].length},
              packets[i].size(), std::size_t{0}})
            append(message, static_cast<std::uint32_t>(field));
    }
    send(message);
}

void UsbCable::answerUnlink(std::uint32_t number, UsbStatus status) {
    send(answerHeader(UnlinkAnswer, number, status, 0, 0));
}

/// To a host that has gone nothing is sent; the next event says so.
void UsbCable::send(const Bytes& message) {
    for (std::size_t sent = 0; sent < message.size();) {
        const ssize_t took = ::send(socket, message.data() + sent, message.size() - sent, MSG_NOSIGNAL);
        if (took < 0 && errno == EINTR)
            continue;
        if (took < 0 && (errno == EPIPE || errno == ECONNRESET))
            return;
        if (took < 0)
            fail("writing to the host");
        sent += static_cast<std::size_t>(took);
    }
}

} // namespace Zentara::Simulated
