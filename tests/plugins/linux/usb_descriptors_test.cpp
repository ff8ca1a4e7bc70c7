#include <gmock/gmock.h>

#include "plugins/linux/usb_descriptors.h"
#include "tests/plugins/linux/system_tree.h"

namespace Zentara::Linux {
namespace {

using testing::ElementsAre;
using TestSupport::Descriptors;

std::vector<std::string> faultsOf(const Descriptors& camera) {
    std::vector<std::string> texts;
    for (const UsbFault& fault : readUsbDescriptors(camera.bytes()).faults)
        texts.push_back(faultText(fault));
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
    EXPECT_THAT(faultsOf(Descriptors().interface(3, 0).add({0, 4, 4})),
                ElementsAre("offset 9: a descriptor of 0 bytes; what follows cannot be found"));
    EXPECT_THAT(faultsOf(Descriptors().add({255, 4, 0})),
                ElementsAre("offset 0: a descriptor of 255 bytes, of which only 3 are there"));
    EXPECT_THAT(faultsOf(control().input(1).unit(6, 7).unit(7, 6, 0x43).output(2, 1)),
                ElementsAre("offset 17: unit 6 is its own source", "offset 44: unit 7 is its own source"));
    EXPECT_THAT(faultsOf(control().unit(6, 9)),
                ElementsAre("offset 9: unit 6 takes its picture from unit 9, which is not there",
                            "offset 9: a control interface without an input terminal"));
    EXPECT_THAT(faultsOf(control().input(1).unit(6, 1).unit(7, 1).output(2, 6)),
                ElementsAre("offset 44: unit 7 has the identifier of unit 6"));
    EXPECT_THAT(faultsOf(control().input(1).input(1).output(2, 1)),
                ElementsAre("offset 17: unit 1 once more"));
    EXPECT_THAT(faultsOf(stream().frame(0, 0)), ElementsAre("offset 36: a frame of 0 x 0 pixels"));
    EXPECT_THAT(faultsOf(stream().frame(65535, 65535)),
                ElementsAre("offset 36: a frame of 65535 x 65535 pixels"));
    EXPECT_THAT(faultsOf(control().input(1).output(2, 1).add(
                    {22, 0x24, 6, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 255})),
                ElementsAre("offset 26: an extension unit with its inputs of 22 bytes; it takes 278"));
}

} // namespace
} // namespace Zentara::Linux
