// The USB descriptors of a camera of any bytes. Reading them ends, and what it tells can be relied on: units have a number
// each, pictures a size that a picture can have, and faults lie where there are bytes.
#include <cstdint>
#include <cstdlib>

#include "plugins/linux/usb_descriptors.h"

namespace {

using namespace Zentara::Linux;

constexpr std::uint32_t widest = 16384;

void expect(bool holds) {
    if (!holds)
        std::abort();
}

void checkUnits(const UsbCamera& camera) {
    for (const UsbExtensionUnit& unit : camera.units) {
        expect(unit.unit != 0 && camera.find(unit.unit) != nullptr && camera.find(unit.guid) != nullptr);
        for (const std::uint8_t selector : unit.selectors)
            expect(selector != 0);
    }
}

void checkStreams(const UsbCamera& camera) {
    for (const UsbStream& stream : camera.streams) {
        for (const UsbFormat& format : stream.formats) {
            for (const UsbFrame& frame : format.frames)
                expect(frame.width > 0 && frame.height > 0 && frame.width <= widest &&
                       frame.height <= widest);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const UsbCamera camera = readUsbDescriptors({data, size});
    checkUnits(camera);
    checkStreams(camera);
    for (const UsbFault& fault : camera.faults)
        expect(fault.offset <= size && !faultText(fault).empty());
    return 0;
}
