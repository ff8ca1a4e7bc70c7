#include "plugins/linux/usb_descriptors.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>

#include <zentara/utils/format.h>

namespace Zentara::Linux {

using Utils::Format;

namespace {

using Bytes = std::span<const std::uint8_t>;

// Descriptor types.
constexpr std::uint8_t interfaceType = 0x04;
constexpr std::uint8_t classInterfaceType = 0x24;

// Of an interface.
constexpr std::uint8_t videoClass = 0x0E;
constexpr std::uint8_t controlSubclass = 1;
constexpr std::uint8_t streamingSubclass = 2;

// What a class-specific descriptor of a control interface is.
constexpr std::uint8_t inputTerminal = 2;
constexpr std::uint8_t outputTerminal = 3;
constexpr std::uint8_t selectorUnit = 4;
constexpr std::uint8_t processingUnit = 5;
constexpr std::uint8_t extensionUnit = 6;
constexpr std::uint8_t encodingUnit = 7;

// And of a streaming interface.
constexpr std::uint8_t inputHeader = 1;
constexpr std::uint8_t uncompressedFormat = 4;
constexpr std::uint8_t uncompressedFrame = 5;
constexpr std::uint8_t jpegFormat = 6;
constexpr std::uint8_t jpegFrame = 7;
constexpr std::uint8_t frameBasedFormat = 16;
constexpr std::uint8_t frameBasedFrame = 17;

constexpr std::uint32_t widestPicture = 16384;

std::uint32_t word(Bytes bytes, std::size_t offset, int count) {
    std::uint32_t value = 0;
    for (int index = count - 1; index >= 0; --index)
        value = value << 8 | bytes[offset + static_cast<std::size_t>(index)];
    return value;
}

/// Sixteen bytes as they lie in a descriptor: the first three fields with the low byte first.
GUID guidAt(Bytes bytes, std::size_t offset) {
    GUID guid{};
    guid.Data1 = word(bytes, offset, 4);
    guid.Data2 = static_cast<std::uint16_t>(word(bytes, offset + 4, 2));
    guid.Data3 = static_cast<std::uint16_t>(word(bytes, offset + 6, 2));
    std::memcpy(guid.Data4, bytes.data() + offset + 8, sizeof guid.Data4);
    return guid;
}

constexpr GUID jpegGuid = {0x47504A4D, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};

class Reader {
public:
    explicit Reader(Bytes all) : bytes(all) {}

    UsbCamera read() {
        std::size_t position = 0;
        while (position < bytes.size()) {
            const std::size_t length = bytes[position];
            offset = position;
            if (length < 2) {
                fault(Format("a descriptor of % bytes; what follows cannot be found") %
                      static_cast<unsigned>(length));
                break;
            }
            if (length > bytes.size() - position) {
                fault(Format("a descriptor of % bytes, of which only % are there") %
                      static_cast<unsigned>(length) % static_cast<unsigned>(bytes.size() - position));
                break;
            }
            visit(bytes.subspan(position, length));
            position += length;
        }
        endOfControl();
        return std::move(camera);
    }

private:
    /// A unit or terminal of the control interface that is being read.
    struct Entity {
        std::size_t offset = 0;
        std::vector<std::uint8_t> sources;
        bool output = false;
        bool input = false;
    };

    void fault(std::string text) { camera.faults.push_back({offset, std::move(text)}); }

    /// Whether the descriptor has that many bytes; tells if not.
    bool holds(Bytes descriptor, std::size_t least, const char* what) {
        if (descriptor.size() >= least)
            return true;
        fault(Format("% of % bytes; it takes %") % what % static_cast<unsigned>(descriptor.size()) %
              static_cast<unsigned>(least));
        return false;
    }

    void visit(Bytes descriptor) {
        if (descriptor[1] == interfaceType) {
            beginInterface(descriptor);
        } else if (descriptor[1] == classInterfaceType && subclass != 0 &&
                   holds(descriptor, 3, "a class-specific descriptor")) {
            if (subclass == controlSubclass)
                visitControl(descriptor);
            else if (subclass == streamingSubclass)
                visitStreaming(descriptor);
        }
    }

    void beginInterface(Bytes descriptor) {
        subclass = 0;
        if (!holds(descriptor, 9, "an interface") || descriptor[5] != videoClass)
            return;
        subclass = descriptor[6];
        const std::uint8_t number = descriptor[2];
        const bool alternate = descriptor[3] != 0;
        if (subclass == controlSubclass && !alternate) {
            endOfControl();
            interfaceNumber = number;
            inControl = true;
        } else if (subclass == streamingSubclass && !alternate) {
            camera.streams.push_back({number, 0, {}});
        } else if (subclass == streamingSubclass) {
            subclass = 0; // its other settings differ in their endpoints alone
        }
    }

    // Control interface ----------------------------------------------------------------------------------------------

    void visitControl(Bytes descriptor) {
        switch (descriptor[2]) {
        case inputTerminal:
            if (holds(descriptor, 8, "an input terminal"))
                add(descriptor[3], {offset, {}, false, true});
            break;
        case outputTerminal:
            if (holds(descriptor, 9, "an output terminal"))
                add(descriptor[3], {offset, {descriptor[7]}, true, false});
            break;
        case selectorUnit:
            if (holds(descriptor, 5, "a selector unit") &&
                holds(descriptor, std::size_t{5} + descriptor[4], "a selector unit with its inputs"))
                add(descriptor[3], {offset, listOf(descriptor, 5, descriptor[4]), false, false});
            break;
        case processingUnit:
        case encodingUnit:
            if (holds(descriptor, 5, "a unit"))
                add(descriptor[3], {offset, {descriptor[4]}, false, false});
            break;
        case extensionUnit:
            addExtension(descriptor);
            break;
        default:
            break;
        }
    }

    static std::vector<std::uint8_t> listOf(Bytes descriptor, std::size_t first, std::size_t count) {
        const Bytes part = descriptor.subspan(first, count);
        return {part.begin(), part.end()};
    }

    bool add(std::uint8_t id, Entity entity) {
        if (id == 0) {
            fault("a unit or terminal without a number");
            return false;
        }
        if (!entities.emplace(id, std::move(entity)).second) {
            fault(Format("unit % once more") % int{id});
            return false;
        }
        return true;
    }

    void addExtension(Bytes descriptor) {
        if (!holds(descriptor, 22, "an extension unit"))
            return;
        const std::size_t inputs = descriptor[21];
        if (!holds(descriptor, 22 + inputs + 1, "an extension unit with its inputs"))
            return;
        const std::size_t mapBytes = descriptor[22 + inputs];
        if (!holds(descriptor, 22 + inputs + 1 + mapBytes, "an extension unit with its map of controls"))
            return;
        UsbExtensionUnit unit;
        unit.unit = descriptor[3];
        unit.guid = guidAt(descriptor, 4);
        unit.interfaceNumber = interfaceNumber;
        for (std::size_t bit = 0; bit < 8 * mapBytes && bit < 255; ++bit) {
            if ((descriptor[23 + inputs + bit / 8] >> bit % 8 & 1) != 0)
                unit.selectors.push_back(static_cast<std::uint8_t>(bit + 1));
        }
        if (!add(unit.unit, {offset, listOf(descriptor, 22, inputs), false, false}))
            return;
        if (camera.find(unit.guid) != nullptr)
            fault(Format("unit % has the identifier of unit %") % int{unit.unit} %
                  int{camera.find(unit.guid)->unit});
        camera.units.push_back(std::move(unit));
    }

    /// Looks at how the units of a control interface hang together.
    void endOfControl() {
        if (!inControl)
            return;
        inControl = false;
        bool anyOutput = false;
        bool anyInput = false;
        for (const auto& [id, entity] : entities) {
            offset = entity.offset;
            anyOutput = anyOutput || entity.output;
            anyInput = anyInput || entity.input;
            for (const std::uint8_t source : entity.sources) {
                if (entities.count(source) == 0)
                    fault(Format("unit % takes its picture from unit %, which is not there") % int{id} %
                          int{source});
            }
            if (leadsTo(id, id))
                fault(Format("unit % is its own source") % int{id});
        }
        if (!anyOutput || !anyInput) {
            offset = entities.empty() ? bytes.size() : entities.begin()->second.offset;
            fault(anyInput ? "a control interface without an output terminal"
                           : "a control interface without an input terminal");
        }
        entities.clear();
    }

    /// Whether the sources of a unit, and theirs, lead to the other.
    [[nodiscard]] bool leadsTo(std::uint8_t from, std::uint8_t wanted) const {
        bool seen[256] = {};
        std::vector<std::uint8_t> open{from};
        while (!open.empty()) {
            const auto found = entities.find(open.back());
            open.pop_back();
            if (found == entities.end())
                continue;
            for (const std::uint8_t source : found->second.sources) {
                if (source == wanted)
                    return true;
                if (!seen[source])
                    open.push_back(source);
                seen[source] = true;
            }
        }
        return false;
    }

    // Streaming interface --------------------------------------------------------------------------------------------

    void visitStreaming(Bytes descriptor) {
        UsbStream& stream = camera.streams.back();
        switch (descriptor[2]) {
        case inputHeader:
            if (holds(descriptor, 9, "a header of a stream"))
                stream.terminal = descriptor[8];
            break;
        case uncompressedFormat:
        case frameBasedFormat:
            if (holds(descriptor, 21, "a format"))
                stream.formats.push_back({guidAt(descriptor, 5), {}});
            break;
        case jpegFormat:
            if (holds(descriptor, 11, "a format"))
                stream.formats.push_back({jpegGuid, {}});
            break;
        case uncompressedFrame:
        case jpegFrame:
            addFrame(descriptor, 25);
            break;
        case frameBasedFrame:
            addFrame(descriptor, 21);
            break;
        default:
            break;
        }
    }

    /// \param countAt where the number of intervals stands; they follow, after 4 further bytes of a frame-based one
    void addFrame(Bytes descriptor, std::size_t countAt) {
        std::vector<UsbFormat>& formats = camera.streams.back().formats;
        if (!holds(descriptor, 26, "a frame"))
            return;
        if (formats.empty()) {
            fault("a frame without a format");
            return;
        }
        UsbFrame frame{word(descriptor, 5, 2), word(descriptor, 7, 2), {}};
        if (frame.width == 0 || frame.height == 0 || frame.width > widestPicture ||
            frame.height > widestPicture) {
            fault(Format("a frame of % x % pixels") % frame.width % frame.height);
            return;
        }
        const std::size_t count = descriptor[countAt];
        if (!holds(descriptor, 26 + 4 * count, "a frame with its intervals"))
            return;
        for (std::size_t index = 0; index < count; ++index)
            frame.intervals.push_back(word(descriptor, 26 + 4 * index, 4));
        formats.back().frames.push_back(std::move(frame));
    }

    const Bytes bytes;
    UsbCamera camera;
    std::size_t offset = 0;    ///< of the descriptor that is being read
    std::uint8_t subclass = 0; ///< of the video interface that is being read; 0: it is none
    std::uint8_t interfaceNumber = 0;
    bool inControl = false;
    std::map<std::uint8_t, Entity> entities;
};

template<typename Same>
const UsbExtensionUnit* findUnit(const std::vector<UsbExtensionUnit>& units, Same same) {
    const auto found = std::find_if(units.begin(), units.end(), same);
    return found == units.end() ? nullptr : &*found;
}

} // namespace

const UsbExtensionUnit* UsbCamera::find(const GUID& guid) const noexcept {
    return findUnit(units, [&](const UsbExtensionUnit& unit) { return guidEquals(unit.guid, guid); });
}

const UsbExtensionUnit* UsbCamera::find(std::uint8_t number) const noexcept {
    return findUnit(units, [=](const UsbExtensionUnit& unit) { return unit.unit == number; });
}

UsbCamera readUsbDescriptors(std::span<const std::uint8_t> bytes) { return Reader(bytes).read(); }

std::string faultText(const UsbFault& fault) {
    return Format("offset %: %") % static_cast<unsigned>(fault.offset) % fault.text;
}

} // namespace Zentara::Linux
