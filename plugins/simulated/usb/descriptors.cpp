#include "plugins/simulated/usb/descriptors.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "plugins/descriptions/wire.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

constexpr std::uint8_t deviceType = 1;
constexpr std::uint8_t configurationType = 2;
constexpr std::uint8_t stringType = 3;
constexpr std::uint8_t interfaceType = 4;
constexpr std::uint8_t endpointType = 5;
constexpr std::uint8_t associationType = 11;
constexpr std::uint8_t classType = 0x24;
constexpr std::uint8_t classEndpointType = 0x25;

constexpr std::uint8_t audioClass = 1;
constexpr std::uint8_t videoClass = 14;
constexpr std::uint8_t controlSubclass = 1;
constexpr std::uint8_t streamingSubclass = 2;

constexpr std::uint16_t videoVersion = 0x0110;
constexpr std::uint16_t audioVersion = 0x0100;
constexpr std::uint16_t highSpeedBulkPacket = 512;
constexpr std::uint16_t threeTimes1024 = 2U << 11 | 1024; // a microframe
constexpr std::uint16_t audioPacket = audioSampleRate / 1000 * audioChannels * audioBitsPerSample / 8 +
                                      4; // a millisecond, with room for one sample

void append(Bytes& all, const Bytes& more) { all.insert(all.end(), more.begin(), more.end()); }

/// One descriptor; its first byte, the length, is known when it is done.
class Descriptor {
public:
    explicit Descriptor(std::uint8_t type) {
        bytes.reserve(255); // no descriptor is longer
        bytes = {0, type};
    }

    Descriptor& u8(std::initializer_list<unsigned> values) {
        for (const unsigned value : values)
            bytes.push_back(static_cast<std::uint8_t>(value));
        return *this;
    }
    Descriptor& u16(unsigned value) { return u8({value & 0xFF, value >> 8 & 0xFF}); }
    Descriptor& u32(std::uint32_t value) { return u16(value & 0xFFFF).u16(value >> 16); }
    Descriptor& raw(const Bytes& more) {
        append(bytes, more);
        return *this;
    }

    [[nodiscard]] Bytes done() {
        bytes[0] = static_cast<std::uint8_t>(bytes.size());
        return bytes;
    }

private:
    Bytes bytes;
};

Bytes associationOf(unsigned first, unsigned count, unsigned usbClass, unsigned subclass) {
    return Descriptor(associationType).u8({first, count, usbClass, subclass, 0, 0}).done();
}

Bytes interfaceOf(unsigned number, unsigned alternate, unsigned endpoints, unsigned usbClass,
                  unsigned subclass) {
    return Descriptor(interfaceType).u8({number, alternate, endpoints, usbClass, subclass, 0, 0}).done();
}

Bytes endpointOf(unsigned number, unsigned attributes, unsigned packet, unsigned interval) {
    return Descriptor(endpointType).u8({0x80 | number, attributes}).u16(packet).u8({interval}).done();
}

/// As GUIDs lie in memory: the first three numbers little-endian.
Bytes guidBytes(const ::GUID& guid) {
    Bytes bytes = Descriptor(0).u32(guid.Data1).u16(guid.Data2).u16(guid.Data3).done();
    bytes.erase(bytes.begin(), bytes.begin() + 2);
    bytes.insert(bytes.end(), std::begin(guid.Data4), std::end(guid.Data4));
    return bytes;
}

/// A format's GUID is its four letters before a constant tail.
Bytes formatGuid(Coding coding) {
    const char* const letters = coding == Coding::Y16 ? "Y16 " : coding == Coding::Z16 ? "Z16 " : "YUY2";
    Bytes bytes(letters, letters + 4);
    append(bytes, {0x00, 0x00, 0x10, 0x00, 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71});
    return bytes;
}

Bytes extensionUnit(const ExtensionShape& extension, unsigned source) {
    Bytes present((*std::max_element(extension.selectors.begin(), extension.selectors.end()) + 7) / 8);
    for (const std::uint32_t selector : extension.selectors)
        present[(selector - 1) / 8] |= static_cast<std::uint8_t>(1U << (selector - 1) % 8);
    return Descriptor(classType)
        .u8({6, extension.number})
        .raw(guidBytes(extension.guid))
        .u8({static_cast<unsigned>(extension.selectors.size()), 1, source,
             static_cast<unsigned>(present.size())})
        .raw(present)
        .u8({0})
        .done();
}

/// Terminals and units of one stream, from the lens to the wire.
Bytes chainOf(const CameraShape& shape, std::size_t stream) {
    const bool controls = shape.streams[stream].hasControls;
    unsigned source = unitOf(stream, cameraTerminal);
    Bytes chain = Descriptor(classType) // of a camera, without a zoom; exposure and who chooses it
                      .u8({2, source})
                      .u16(0x0201)
                      .u8({0, 0})
                      .u16(0)
                      .u16(0)
                      .u16(0)
                      .u8({3, controls ? 0x0AU : 0U, 0, 0})
                      .done();
    if (controls) { // brightness, contrast, gain
        append(chain, Descriptor(classType)
                          .u8({5, unitOf(stream, processingUnit), source})
                          .u16(0)
                          .u8({2, 0x03, 0x02, 0, 0})
                          .done());
        source = unitOf(stream, processingUnit);
    }
    if (shape.streams[stream].hasExtension) {
        append(chain, extensionUnit(shape.extension, source));
        source = shape.extension.number;
    }
    append(
        chain,
        Descriptor(classType).u8({3, unitOf(stream, outputTerminal)}).u16(0x0101).u8({0, source, 0}).done());
    return chain;
}

Bytes videoControl(const CameraShape& shape) {
    Bytes chains;
    Bytes interfaces;
    for (std::size_t stream = 0; stream < shape.streams.size(); ++stream) {
        append(chains, chainOf(shape, stream));
        interfaces.push_back(static_cast<std::uint8_t>(firstStreamInterface + stream));
    }
    const std::size_t headerBytes = 12 + interfaces.size();
    Bytes all = interfaceOf(controlInterface, 0, 0, videoClass, controlSubclass);
    append(all, Descriptor(classType)
                    .u8({1})
                    .u16(videoVersion)
                    .u16(static_cast<unsigned>(headerBytes + chains.size()))
                    .u32(clockFrequency)
                    .u8({static_cast<unsigned>(interfaces.size())})
                    .raw(interfaces)
                    .done());
    append(all, chains);
    return all;
}

Bytes frameOf(unsigned subtype, unsigned index, const PictureSize& size) {
    const auto bytes = static_cast<std::uint32_t>(size.bytes());
    Descriptor frame = Descriptor(classType)
                           .u8({subtype, index, 0})
                           .u16(size.width)
                           .u16(size.height)
                           .u32(bytes * 8 * 15)
                           .u32(bytes * 8 * 60)
                           .u32(bytes)
                           .u32(pictureIntervals[0])
                           .u8({static_cast<unsigned>(std::size(pictureIntervals))});
    for (const std::uint32_t interval : pictureIntervals)
        frame.u32(interval);
    return frame.done();
}

Bytes formatOf(const VideoFormat& format, unsigned index) {
    const auto sizes = static_cast<unsigned>(format.sizes.size());
    const bool compressed = format.coding == Coding::Mjpeg;
    Bytes all = compressed ? Descriptor(classType).u8({6, index, sizes, 1, 1, 0, 0, 0, 0}).done()
                           : Descriptor(classType)
                                 .u8({4, index, sizes})
                                 .raw(formatGuid(format.coding))
                                 .u8({16, 1, 0, 0, 0, 0})
                                 .done();
    unsigned frame = 1;
    for (const PictureSize& size : format.sizes)
        append(all, frameOf(compressed ? 7 : 5, frame++, size));
    append(all, Descriptor(classType).u8({13, 1, 1, 4}).done()); // colours as usual
    return all;
}

Bytes videoStreaming(const CameraShape& shape, std::size_t stream) {
    const StreamShape& own = shape.streams[stream];
    const auto number = static_cast<unsigned>(firstStreamInterface + stream);
    const auto endpoint = static_cast<unsigned>(firstStreamEndpoint + stream);
    Bytes formats;
    unsigned index = 1;
    for (const VideoFormat& format : own.formats)
        append(formats, formatOf(format, index++));
    const std::size_t headerBytes = 13 + own.formats.size();
    Bytes all = interfaceOf(number, 0, shape.isochronous ? 0 : 1, videoClass, streamingSubclass);
    append(all, Descriptor(classType)
                    .u8({1, static_cast<unsigned>(own.formats.size())})
                    .u16(static_cast<unsigned>(headerBytes + formats.size()))
                    .u8({0x80 | endpoint, 0, unitOf(stream, outputTerminal), 0, 0, 0, 1})
                    .raw(Bytes(own.formats.size()))
                    .done());
    append(all, formats);
    if (shape.isochronous) {
        append(all, interfaceOf(number, 1, 1, videoClass, streamingSubclass));
        append(all, endpointOf(endpoint, 5, threeTimes1024, 1));
    } else {
        append(all, endpointOf(endpoint, 2, highSpeedBulkPacket, 0));
    }
    return all;
}

Bytes microphone(const CameraShape& shape) {
    const unsigned control = audioInterface(shape);
    const unsigned streaming = control + 1;
    constexpr unsigned input = 1;
    constexpr unsigned output = 3;
    Bytes units =
        Descriptor(classType).u8({2, input}).u16(0x0201).u8({0, audioChannels}).u16(3).u8({0, 0}).done();
    append(units,
           Descriptor(classType).u8({6, microphoneFeatures, input, 1, 3, 0, 0, 0}).done()); // mute, level
    append(units, Descriptor(classType).u8({3, output}).u16(0x0101).u8({0, microphoneFeatures, 0}).done());
    constexpr std::size_t headerBytes = 9;

    Bytes all = associationOf(control, 2, audioClass, 2);
    append(all, interfaceOf(control, 0, 0, audioClass, controlSubclass));
    append(all, Descriptor(classType)
                    .u8({1})
                    .u16(audioVersion)
                    .u16(static_cast<unsigned>(headerBytes + units.size()))
                    .u8({1, streaming})
                    .done());
    append(all, units);
    append(all, interfaceOf(streaming, 0, 0, audioClass, streamingSubclass));
    append(all, interfaceOf(streaming, 1, 1, audioClass, streamingSubclass));
    append(all, Descriptor(classType).u8({1, output, 1}).u16(1).done());
    append(all, Descriptor(classType)
                    .u8({2, 1, audioChannels, audioBitsPerSample / 8, audioBitsPerSample, 1})
                    .u16(audioSampleRate & 0xFFFF)
                    .u8({audioSampleRate >> 16})
                    .done());
    append(all, Descriptor(endpointType) // every eighth microframe
                    .u8({0x80U | audioEndpoint(shape), 5})
                    .u16(audioPacket)
                    .u8({4, 0, 0})
                    .done());
    append(all, Descriptor(classEndpointType).u8({1, 1, 0}).u16(0).done());
    return all;
}

} // namespace

Bytes deviceDescriptor(const CameraShape& shape) {
    return Descriptor(deviceType)
        .u16(0x0200)
        .u8({0xEF, 2, 1, 64}) // its functions are associations of interfaces
        .u16(shape.vendorId)
        .u16(shape.productId)
        .u16(shape.revision)
        .u8({1, 2, 3, 1})
        .done();
}

Bytes configurationDescriptor(const CameraShape& shape) {
    const auto videoInterfaces = static_cast<unsigned>(1 + shape.streams.size());
    Bytes inside = associationOf(controlInterface, videoInterfaces, videoClass, 3);
    append(inside, videoControl(shape));
    for (std::size_t stream = 0; stream < shape.streams.size(); ++stream)
        append(inside, videoStreaming(shape, stream));
    if (shape.hasMicrophone)
        append(inside, microphone(shape));
    constexpr std::size_t ownBytes = 9;
    Bytes all = Descriptor(configurationType)
                    .u16(static_cast<unsigned>(ownBytes + inside.size()))
                    .u8({videoInterfaces + (shape.hasMicrophone ? 2U : 0U), 1, 0, 0x80, 250})
                    .done();
    append(all, inside);
    return all;
}

Bytes stringDescriptor(const CameraShape& shape, std::uint8_t index) {
    Descriptor text(stringType);
    if (index == 0)
        return text.u16(0x0409).done();
    const std::array<const std::string*, 3> texts{&shape.vendorName, &shape.productName, &shape.serialNumber};
    if (index > texts.size())
        return {};
    for (const char character : *texts[index - 1U])
        text.u16(static_cast<unsigned char>(character));
    return text.done();
}

} // namespace Zentara::Simulated
