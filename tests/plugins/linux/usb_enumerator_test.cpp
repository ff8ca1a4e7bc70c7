#include <sys/stat.h>
#include <thread>

#include <gmock/gmock.h>

#include <zentara/core/descriptor_store_ro.h>

#include "plugins/usb/generic_nodes.h"
#include "plugins/usb/usb_enumerator.h"
#include "support/log_capture.h"
#include "tests/plugins/linux/fake_kernel.h"
#include "tests/plugins/linux/system_tree.h"

namespace Zentara::Usb {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using TestSupport::Descriptors;

/// Describes a camera 1234:5678, depth as interface 3 and colour as interface 5; and generic nodes.
class Store final : public Core::DescriptorStoreRO {
public:
    bool selectNode(const HardwareIDs& wanted, Core::Profile) override {
        ++asked;
        const bool described = wanted.vendorId == 0x1234 && wanted.productId == 0x5678 &&
                               wanted.revision == 0x102 &&
                               (wanted.interfaceNumber == 3 || wanted.interfaceNumber == 5);
        ids = wanted;
        return described || (isWhole && genericType(wanted.interfaceNumber) != NodeType_NONE);
    }
    [[nodiscard]] NodeType getNodeType() const override {
        return ids.interfaceNumber == 3   ? NodeType_DEPTH
               : ids.interfaceNumber == 5 ? NodeType_COLOR
                                          : genericType(ids.interfaceNumber);
    }
    [[nodiscard]] FourCC getFourCC() const override {
        return {ids.interfaceNumber != 3 ? fourCCCode('Y', 'U', 'Y', '2') : depthFormat, 16, 0};
    }
    [[nodiscard]] GUID getDeviceImplGUID() const override { return device; }
    [[nodiscard]] HardwareIDs getNodeHardwareIDs() const override { return ids; }
    [[nodiscard]] const Core::DeviceDescriptor* getDeviceDescriptor() const override { return nullptr; }
    [[nodiscard]] const Core::NodeDescriptor* getNodeDescriptor() const override { return nullptr; }

    int asked = 0;
    bool isWhole = true; ///< it knows generic nodes
    std::uint32_t depthFormat = V4L2_PIX_FMT_Y16;
    GUID device = Core::Guids::V4L2VIDEO_IMPL;

private:
    HardwareIDs ids;
};

/// A node for a comparison: "TYPE INTERFACE PATH".
std::vector<std::string> textsOf(const std::vector<NodeEvent>& nodes) {
    std::vector<std::string> texts;
    for (const NodeEvent& node : nodes)
        texts.push_back(std::string(typeName(node.nodeType)) + " " + std::to_string(node.interfaceNumber) +
                        " " + node.path);
    return texts;
}

class UsbEnumeratorTest : public testing::Test {
protected:
    ~UsbEnumeratorTest() override { enumerator.dispose(); }

    std::vector<NodeEvent> look() {
        std::vector<NodeEvent> nodes;
        enumerator.enumerate(nodes);
        return nodes;
    }

    TestSupport::SystemTree tree;
    std::shared_ptr<TestSupport::FakeKernel> kernel = std::make_shared<TestSupport::FakeKernel>();
    Store store;
    UsbEnumerator enumerator{CameraScan(kernel, Linux::Sysfs(tree.path()))};
};

TEST_F(UsbEnumeratorTest, TellsNodesApartByWhatTheyDeliver) {
    kernel->formats = {V4L2_PIX_FMT_YUYV, V4L2_PIX_FMT_Y16, V4L2_PIX_FMT_Z16};
    kernel->openErrors["/dev/video4"] = EACCES;
    kernel->openErrors["/dev/video5"] = EACCES;
    const auto z16 = Descriptors().interface(1, 2).format("Z16 ").frame(640, 480).bytes();
    tree.plug("1-1", "1234", "5678", {});
    tree.plug("1-2", "1234", "9999", {});
    tree.plug("1-3", "1234", "9999", z16);
    tree.plug("1-4", "4321", "0001", Descriptors().interface(0, 1).bytes());
    tree.addVideo(0, "devices/usb1/1-1/1-1:1.0");
    tree.addVideo(2, "devices/usb1/1-2/1-2:1.0");
    tree.addVideo(4, "devices/usb1/1-3/1-3:1.0");
    tree.addVideo(5, "devices/usb1/1-3/1-3:1.0", 1);
    tree.addMicrophone(3, "devices/usb1/1-2/1-2:1.2");
    tree.addMicrophone(4, "devices/usb1/1-2/1-2:1.4");
    const TestSupport::LogCapture log;
    enumerator.initialize(nullptr, &store);
    const std::vector<NodeEvent> nodes = look();
    EXPECT_THAT(textsOf(nodes),
                ElementsAre("depth 3 /dev/video0", "color 5 /dev/video0", "depth 257 /dev/video2",
                            "color 258 /dev/video2", "audio 259 hw:3,0", "depth 257 /dev/video4",
                            "audio 0 " + tree.real("devices/usb1/1-4")));
    EXPECT_EQ(nodes[0].serialNumber, "S1-1");
    EXPECT_EQ(nodes[0].parentPath, tree.real("devices/usb1/1-1"));
    EXPECT_EQ(nodes[0].portNumber, 2U);
    EXPECT_EQ(nodes[2].deviceIndex, 0U);
    EXPECT_EQ(nodes[5].deviceIndex, 1U) << "the second one of its kind; this user may not open it";
    EXPECT_THAT(nodes[6].name, HasSubstr("the kernel made no video node of it"));
    EXPECT_THAT(nodes[6].name, HasSubstr("without an input terminal"));
    EXPECT_EQ(nodes[6].nodeType, NodeType_NONE);
    EXPECT_EQ(kernel->openFiles, 0);
    store.asked = 0;
    EXPECT_TRUE(enumerator.isPresent(nodes[2]));
    EXPECT_EQ(store.asked, 0) << "nothing has changed";
    tree.remove("class/video4linux/video2");
    EXPECT_FALSE(enumerator.isPresent(nodes[2]));
    EXPECT_TRUE(enumerator.isPresent(nodes[5]));
    EXPECT_THAT(log.warnings(), Contains(HasSubstr("2 microphones, of which hw:3,0 alone is used")).Times(1));
}

/// A description for the plug-ins of another system is none here; one without a format means what such a node needs.
TEST_F(UsbEnumeratorTest, TakesADescriptionOfThisSystemElseWhatIsOfUse) {
    tree.plug("1-1", "1234", "5678", {});
    tree.addVideo(0, "devices/usb1/1-1/1-1:1.0");
    const auto nodes = [this] {
        enumerator.initialize(nullptr, &store);
        return textsOf(look());
    };
    kernel->formats = {V4L2_PIX_FMT_YUYV, V4L2_PIX_FMT_Z16};
    store.depthFormat = 0;
    EXPECT_THAT(nodes(), ElementsAre("depth 3 /dev/video0", "color 5 /dev/video0"));
    store.device = Core::Guids::MOCKVIDEODEVICE_IMPL;
    EXPECT_THAT(nodes(), ElementsAre("depth 257 /dev/video0", "color 258 /dev/video0"));
    for (const std::uint32_t format :
         {V4L2_PIX_FMT_YUYV, V4L2_PIX_FMT_UYVY, V4L2_PIX_FMT_NV12, V4L2_PIX_FMT_NV21, V4L2_PIX_FMT_YUV420,
          V4L2_PIX_FMT_YVU420, V4L2_PIX_FMT_GREY, V4L2_PIX_FMT_MJPEG, V4L2_PIX_FMT_JPEG}) {
        kernel->formats = {V4L2_PIX_FMT_H264, format};
        tree.setAddress("1-1", format);
        EXPECT_THAT(nodes(), ElementsAre("color 258 /dev/video0")) << format;
    }
    store.isWhole = false;
    EXPECT_THAT(nodes(), ElementsAre("audio 0 " + tree.real("devices/usb1/1-1"))) << "a refusal";
}

/// What cannot be had of a camera, and that only one that answers keeps a camera from being asked again.
TEST_F(UsbEnumeratorTest, TellsWhyACameraHasNoNodes) {
    kernel->formats = {V4L2_PIX_FMT_H264};
    kernel->openErrors = {{"/dev/video1", ENODEV}, {"/dev/video2", EBUSY}};
    for (unsigned number = 0; number < 3; ++number) {
        const std::string port = "1-" + std::to_string(number);
        tree.plug(port, "4321", "0001", Descriptors().interface(1, 2).format("Z16 ").bytes());
        tree.addVideo(number, "devices/usb1/" + port + "/" + port + ":1.0");
    }
    tree.addVideo(3, "devices/platform/box"); // no camera on USB
    enumerator.initialize(nullptr, &store);
    const std::vector<NodeEvent> nodes = look();
    ASSERT_EQ(nodes.size(), 3U);
    EXPECT_THAT(nodes[0].name, HasSubstr("no node can show what it delivers: 'H264'"));
    EXPECT_THAT(nodes[1].name, HasSubstr("/dev/video1: cannot ask what it delivers: No such device"));
    EXPECT_EQ(nodes[2].path, "/dev/video2") << "by its descriptors: it could not be woken";
    tree.setAddress("1-0", 0);
    tree.setAddress("1-2", 8);
    const std::vector<NodeEvent> later = look();
    EXPECT_EQ(later[0], nodes[0]) << "while it is reset";
    EXPECT_EQ(later[2].deviceAddress, 8U) << "another one";
    EXPECT_EQ(kernel->opened["/dev/video0"], 1);
    EXPECT_EQ(kernel->opened["/dev/video1"], 2);
    tree.remove("devices/usb1/1-1/1-1:1.0/bInterfaceClass");
    EXPECT_EQ(look().size(), 2U) << "it was being pulled out";
}

TEST_F(UsbEnumeratorTest, SeesACameraWhoseNodesComeWhileItIsAsked) {
    tree.plug("1-1", "4321", "0001", {});
    const std::string asked = tree.path() + "/devices/usb1/1-1/bNumInterfaces";
    ASSERT_EQ(mkfifo(asked.c_str(), 0600), 0);
    std::thread driver([&] {
        const std::ofstream answer(asked); // once it is read
        std::filesystem::remove(asked);
        tree.addVideo(0, "devices/usb1/1-1/1-1:1.0");
    });
    enumerator.initialize(nullptr, &store);
    EXPECT_THAT(textsOf(look()), ElementsAre(HasSubstr("/dev/video0")));
    driver.join();
}

} // namespace
} // namespace Zentara::Usb
