#include <gmock/gmock.h>

#include "plugins/linux/usb_descriptors.h"
#include "tests/plugins/linux/system_tree.h"

namespace Zentara::Linux {
namespace {

using testing::ElementsAre;
using TestSupport::Descriptors;
using Bytes = Descriptors::Bytes;

std::string faultsOf(const Descriptors& camera) {
    std::string texts;
    for (const UsbFault& fault : readUsbDescriptors(camera.bytes()).faults)
        texts += (texts.empty() ? "" : ", ") + faultText(fault).substr(7);
    return texts;
}

TEST(UsbDescriptors, TellUnitsAndFormats) {
    Descriptors told;
    told.interface(0, 1).input(1).unit(6, 1).output(2, 6);
    told.interface(1, 2).format("Z16 ").frame(640, 480);
    const UsbCamera camera = readUsbDescriptors(told.bytes());
    EXPECT_THAT(camera.faults, testing::IsEmpty());
    const GUID guid = {0x42424242, 0x4242, 0x4242, {0x42, 0x42, 0x42, 0x42, 0x42, 0x42, 0x42, 0x42}};
    ASSERT_NE(camera.find(guid), nullptr);
    EXPECT_THAT(camera.find(guid)->selectors, ElementsAre(1, 2, 9));
    const UsbFormat& format = camera.streams.at(0).formats.at(0);
    EXPECT_EQ(format.fourCC(), 0x2036315AU); // "Z16 "
    EXPECT_TRUE(format.frames.at(0).width == 640 && format.frames.at(0).height == 480);
    EXPECT_THAT(format.frames.at(0).intervals, ElementsAre(333333U));
}

TEST(UsbDescriptors, NameWhatIsWrongByItsOffset) {
    const auto control = [] { return Descriptors().interface(0, 1); };
    const auto stream = [] { return Descriptors().interface(1, 2).format("YUY2"); };
    const auto cut = [&](std::uint8_t subclass, Bytes first, std::size_t length) {
        first.insert(first.begin(), {static_cast<std::uint8_t>(length), 0x24});
        first.resize(length);
        return subclass == 1 ? control().input(1).output(2, 1).add(first)
                             : Descriptors().interface(0, 2).add(first);
    };
    const std::pair<Descriptors, const char*> rows[] = {
        {Descriptors().interface(3, 0).add({0, 4, 4}),
         "9: a descriptor of 0 bytes; what follows cannot be found"},
        {Descriptors().add({255, 4, 0}), "0: a descriptor of 255 bytes, of which only 3 are there"},
        {control().input(1).unit(6, 7).unit(7, 6, 0x43).output(2, 1),
         "17: unit 6 is its own source, 44: unit 7 is its own source"},
        {control().output(6, 9), "9: unit 6 takes its picture from unit 9, which is not there, "
                                 "9: a control interface without an input terminal"},
        {control().input(1), "9: a control interface without an output terminal"},
        {control().input(1).unit(6, 1).unit(7, 1).output(2, 6), "44: unit 7 has the identifier of unit 6"},
        {control().input(1).input(1).output(2, 1), "17: unit 1 once more"},
        {control().input(1).unit(6, 1).unit(6, 1).output(2, 1), "44: unit 6 once more"},
        {control().input(1).output(2, 1).input(0), "26: a unit or terminal without a number"},
        {stream().frame(0, 0), "36: a frame of 0 x 0 pixels"},
        {stream().frame(65535, 65535), "36: a frame of 65535 x 65535 pixels"},
        {Descriptors().interface(1, 2).frame(8, 8), "9: a frame without a format"},
        {control().input(1).output(2, 1).add({5, 4, 0, 0, 0}), "26: an interface of 5 bytes; it takes 9"},
        {cut(1, {}, 2), "26: a class-specific descriptor of 2 bytes; it takes 3"},
        {cut(1, {2}, 7), "26: an input terminal of 7 bytes; it takes 8"},
        {cut(1, {3}, 8), "26: an output terminal of 8 bytes; it takes 9"},
        {cut(1, {4}, 4), "26: a selector unit of 4 bytes; it takes 5"},
        {cut(1, {4, 3, 2}, 6), "26: a selector unit with its inputs of 6 bytes; it takes 7"},
        {cut(1, {5}, 4), "26: a unit of 4 bytes; it takes 5"},
        {cut(1, {6}, 21), "26: an extension unit of 21 bytes; it takes 22"},
        {cut(1, {6, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 255}, 22),
         "26: an extension unit with its inputs of 22 bytes; it takes 278"},
        {cut(1, {6, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4}, 26),
         "26: an extension unit with its map of controls of 26 bytes; it takes 27"},
        {cut(2, {1}, 8), "9: a header of a stream of 8 bytes; it takes 9"},
        {cut(2, {4}, 20), "9: a format of 20 bytes; it takes 21"},
        {cut(2, {6}, 10), "9: a format of 10 bytes; it takes 11"},
        {cut(2, {5}, 25), "9: a frame of 25 bytes; it takes 26"},
    };
    for (const auto& [camera, text] : rows)
        EXPECT_EQ(faultsOf(camera), text);
}

} // namespace
} // namespace Zentara::Linux
