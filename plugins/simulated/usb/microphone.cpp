#include "plugins/simulated/usb/microphone.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "plugins/descriptions/wire.h"
#include "plugins/simulated/tone.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

constexpr int samplesPerPacket = audioSampleRate / 1000;
constexpr std::int64_t microsPerPacket = 1000;

} // namespace

std::optional<Bytes> Microphone::answer(const Setup& setup) {
    switch (setup.request) {
    case SetCur:
        return Bytes();
    case GetCur:
        return Bytes{audioSampleRate & 0xFF, audioSampleRate >> 8 & 0xFF, audioSampleRate >> 16};
    default:
        return std::nullopt;
    }
}

std::optional<std::int64_t> Microphone::serve(UsbCable& cable, UsbFaults& faults, std::int64_t now) {
    while (!waiting.empty()) {
        if (begins(now))
            sample = 0;
        const UsbRequest& request = waiting.front();
        const auto length = static_cast<std::int64_t>(request.packets.size()) * microsPerPacket;
        if (silent)
            return std::nullopt;
        if (now < due + length)
            return due + length;
        PacketAnswers packets;
        for (const UsbRequest::Packet& packet : request.packets)
            packets.push_back(nextPacket(faults, packet.length));
        if (silent)
            return std::nullopt;
        cable.answer(request, packets);
        waiting.pop_front();
        // A host that is slow gets later sound, not less.
        due = std::max(due + length, now - length);
    }
    return std::nullopt;
}

Bytes Microphone::nextPacket(UsbFaults& faults, std::size_t room) {
    const UsbFaults::Kind fault = faults.next(UsbFaults::Place::Sound);
    silent = silent || fault == UsbFaults::Kind::Silent;
    std::array<std::int16_t, std::size_t{samplesPerPacket} * audioChannels> samples{};
    Tone::fill(sample, samplesPerPacket, controls.microphoneLevel(), samples.data());
    sample += samplesPerPacket;
    Bytes packet(fault == UsbFaults::Kind::None ? std::min(room, sizeof samples) : 0);
    if (!packet.empty())
        std::memcpy(packet.data(), samples.data(), packet.size());
    return packet;
}

} // namespace Zentara::Simulated
