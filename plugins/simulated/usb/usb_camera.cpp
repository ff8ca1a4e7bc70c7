#include "plugins/simulated/usb/usb_camera.h"

#include <algorithm>
#include <utility>

#include <zentara/utils/clock.h>

#include "plugins/simulated/usb/descriptors.h"

namespace Zentara::Simulated {
namespace {

// Requests that every device knows, as type and request.
constexpr std::uint8_t getStatus = 0;
constexpr std::uint8_t clearFeature = 1;
constexpr std::uint8_t getDescriptor = 6;
constexpr std::uint8_t getConfiguration = 8;
constexpr std::uint8_t setConfiguration = 9;
constexpr std::uint8_t getInterface = 10;
constexpr std::uint8_t setInterface = 11;

constexpr std::uint8_t toDevice = 0x00; // kinds of request
constexpr std::uint8_t toInterface = 0x01;
constexpr std::uint8_t toEndpoint = 0x02;
constexpr std::uint8_t classToInterface = 0x21;
constexpr std::uint8_t classToEndpoint = 0x22;

constexpr std::uint8_t deviceDescriptorType = 1;
constexpr std::uint8_t configurationDescriptorType = 2;
constexpr std::uint8_t stringDescriptorType = 3;

constexpr std::uint8_t reasonSelector = 2; // of the video control interface itself

// Why a request was refused.
constexpr std::uint8_t unknownRequest = 7;
constexpr std::uint8_t badValue = 8;

std::uint8_t unitIn(const Setup& setup) { return static_cast<std::uint8_t>(setup.index >> 8); }
std::uint8_t interfaceIn(const Setup& setup) { return static_cast<std::uint8_t>(setup.index); }

bool asksForReason(const Setup& setup) {
    return setup.kind() == classToInterface && setup.index == controlInterface &&
           setup.value >> 8 == reasonSelector;
}

} // namespace

UsbCamera::UsbCamera(const CameraShape& wanted, Bytes shown, Port* port, const Pictures& pictures,
                     UsbFaults planned)
    : shape(wanted), configuration(std::move(shown)), faults(std::move(planned)), controls(shape),
      microphone(controls) {
    if (port != nullptr)
        extension.emplace(*port);
    for (const StreamShape& stream : shape.streams)
        streams.emplace_back(stream, shape.isochronous, pictures, controls);
}

void UsbCamera::serve(UsbCable& cable) try {
    for (int wait = 0;; wait = serveStreams(cable)) {
        // Pictures take long to draw; whatever the host has sent in the meantime comes before the next one.
        UsbCable::Event event = cable.next(wait);
        for (; event.kind != UsbCable::Event::Kind::None; event = cable.next(0)) {
            if (event.kind == UsbCable::Event::Kind::Gone)
                return;
            if (event.kind == UsbCable::Event::Kind::Unlink)
                unlink(cable, event);
            else
                take(cable, std::move(event.request));
        }
    }
} catch (const Unplugged&) {
    return;
}

/// \return milliseconds until there is more to do, negative for when the host wants something
int UsbCamera::serveStreams(UsbCable& cable) {
    const std::int64_t now = Utils::Clock::nowMicros();
    std::optional<std::int64_t> next = microphone.serve(cable, faults, now);
    for (VideoStream& stream : streams) {
        const std::optional<std::int64_t> other = stream.serve(cable, faults, now);
        if (other)
            next = next ? std::min(*next, *other) : other;
    }
    return next ? static_cast<int>((*next - now + 999) / 1000) : -1;
}

void UsbCamera::take(UsbCable& cable, UsbRequest request) {
    if (request.endpoint == 0)
        return takeControl(cable, request);
    VideoStream* const stream = streamAt(request.endpoint - firstStreamEndpoint);
    if (stream != nullptr)
        stream->queue(std::move(request));
    else if (request.endpoint == audioEndpoint(shape))
        microphone.queue(std::move(request));
    else
        cable.answer(request, UsbStatus::Stalled, {});
}

void UsbCamera::takeControl(UsbCable& cable, const UsbRequest& request) {
    const Setup& setup = request.setup;
    const std::optional<UsbFaults::Place> place = placeOf(setup);
    const UsbFaults::Kind fault = place ? faults.next(*place) : UsbFaults::Kind::None;
    if (fault == UsbFaults::Kind::Silent) {
        unanswered.insert(request.number);
        return;
    }
    std::optional<Bytes> data;
    if (fault == UsbFaults::Kind::Stall)
        reason = faults.reason();
    else
        data = answer(setup, request.data);
    if (!data)
        return cable.answer(request, UsbStatus::Stalled, {});
    data->resize(std::min<std::size_t>(data->size(), setup.length));
    std::size_t taken = request.data.size();
    if (fault == UsbFaults::Kind::Zero)
        std::fill(data->begin(), data->end(), std::uint8_t{0});
    if (fault == UsbFaults::Kind::Short) {
        data->resize(data->size() / 2);
        taken /= 2;
    }
    cable.answer(request, UsbStatus::Ok, *data, taken);
}

/// Nothing for what no fault touches: the requests that make a device known, and the reason of a refusal.
std::optional<UsbFaults::Place> UsbCamera::placeOf(const Setup& setup) const {
    using Place = UsbFaults::Place;
    if (setup.kind() == toInterface && setup.request == setInterface)
        return Place::Interface;
    if (setup.kind() != classToInterface || asksForReason(setup))
        return std::nullopt;
    if (isExtension(setup)) {
        const bool value = setup.request == SetCur || setup.request == GetCur;
        return value ? Place::Unit : setup.request == GetLen ? Place::Length : Place::Info;
    }
    const std::size_t stream = std::size_t{interfaceIn(setup)} - firstStreamInterface;
    if (stream < streams.size())
        return VideoStream::isCommit(setup) ? Place::Commit : Place::Probe;
    return Place::Control;
}

/// Nothing for a refusal, whose reason stands in `reason` then.
std::optional<Bytes> UsbCamera::answer(const Setup& setup, const Bytes& data) {
    if (asksForReason(setup))
        return Bytes{reason};
    std::optional<Bytes> reply = setup.kind() == classToInterface || setup.kind() == classToEndpoint
                                     ? answerClass(setup, data)
                                     : answerStandard(setup);
    reason = reply ? 0 : setup.request == SetCur ? badValue : unknownRequest;
    return reply;
}

std::optional<Bytes> UsbCamera::answerClass(const Setup& setup, const Bytes& data) {
    if (setup.kind() == classToEndpoint)
        return Microphone::answer(setup);
    if (isExtension(setup))
        return extension->answer(setup, data);
    VideoStream* const stream = streamAt(std::size_t{interfaceIn(setup)} - firstStreamInterface);
    return stream != nullptr ? stream->answer(setup, data) : controls.answer(setup, data);
}

std::optional<Bytes> UsbCamera::answerStandard(const Setup& setup) {
    switch (setup.request) {
    case getDescriptor: {
        Bytes descriptor = descriptorOf(setup);
        return descriptor.empty() ? std::nullopt : std::optional(std::move(descriptor));
    }
    case getStatus:
        return Bytes{0, 0};
    case getConfiguration:
        return Bytes{1};
    case getInterface:
        return Bytes{0};
    case setConfiguration:
        return Bytes();
    case setInterface:
        if (setup.kind() == toInterface)
            stopInterface(interfaceIn(setup));
        return Bytes();
    case clearFeature:
        if (setup.kind() == toEndpoint)
            stopEndpoint(static_cast<std::uint8_t>(setup.index & 0x0F));
        return Bytes();
    default:
        return std::nullopt;
    }
}

Bytes UsbCamera::descriptorOf(const Setup& setup) const {
    if (setup.kind() != toDevice)
        return {};
    switch (setup.value >> 8) {
    case deviceDescriptorType:
        return deviceDescriptor(shape);
    case configurationDescriptorType:
        return configuration;
    case stringDescriptorType:
        return stringDescriptor(shape, static_cast<std::uint8_t>(setup.value));
    default:
        return {};
    }
}

bool UsbCamera::isExtension(const Setup& setup) const {
    return extension && interfaceIn(setup) == controlInterface && unitIn(setup) == shape.extension.number;
}

VideoStream* UsbCamera::streamAt(std::size_t index) {
    return index < streams.size() ? &streams[index] : nullptr;
}

void UsbCamera::stopInterface(std::uint8_t number) {
    if (VideoStream* const stream = streamAt(std::size_t{number} - firstStreamInterface))
        stream->stop();
    if (number == audioInterface(shape) + 1)
        microphone.stop();
}

void UsbCamera::stopEndpoint(std::uint8_t number) {
    if (VideoStream* const stream = streamAt(std::size_t{number} - firstStreamEndpoint))
        stream->stop();
}

void UsbCamera::unlink(UsbCable& cable, const UsbCable::Event& event) {
    bool waited = unanswered.erase(event.unlinkOf) > 0 || microphone.unlink(event.unlinkOf);
    for (VideoStream& stream : streams)
        waited = stream.unlink(event.unlinkOf) || waited;
    cable.answerUnlink(event.number, waited ? UsbStatus::Unlinked : UsbStatus::Ok);
}

} // namespace Zentara::Simulated
