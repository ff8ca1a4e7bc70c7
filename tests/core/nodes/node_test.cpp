
#include <gmock/gmock.h>

#include <zentara/core/audio_node_interface.h>
#include <zentara/core/color_node_interface.h>
#include <zentara/core/depth_node_interface.h>
#include <zentara/io/audio_device_proxy.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/node_event.h>
#include <zentara/plugin/plugin_exceptions.h>

#include "core/nodes/record_store.h"
#include "io/script.h"
#include "support/failure.h"

namespace Zentara {
// The host's own: nodes only keep the pointer.
class DepthProcessorData {};
class ColorProcessorData {};
class AudioProcessorData {};
} // namespace Zentara

namespace Testing {
namespace {

using Zentara::TestSupport::failure;

/// Nodes that have only what a node must have.
template<typename Interface, typename Configuration>
struct BareNode : Interface {
    explicit BareNode(GUID guid) : Interface(guid) {}

    void enableStreaming(Utils::SmartPtr<Configuration>) override {}
    void disableStreaming() override {}
    std::vector<Utils::SmartPtr<Configuration>> getConfigurations() override { return {}; }
    ReadBufferStatus readBuffer(void* buffer, int size, std::int64_t* timestamp, int* length) override {
        return this->getAVDeviceProxy()->readBuffer(buffer, size, timestamp, length);
    }
};

struct BareDepthNode : BareNode<Core::DepthNodeInterface, DepthBaseConfiguration> {
    using BareNode::BareNode;
    TemperatureCompensation getTemperatureCompensation() override { return {}; }
};

struct BareColorNode : BareNode<Core::ColorNodeInterface, ColorConfiguration> {
    using BareNode::BareNode;
    CameraControlRanges getCameraControlRanges() override { return {}; }
    void setCameraControl(CameraControlsEnum, CameraControlValue) override {}
    CameraControls getCameraControls() override { return {}; }
};

struct BareAudioNode : BareNode<Core::AudioNodeInterface, AudioConfiguration> {
    using BareNode::BareNode;
    Utils::SmartPtr<AudioConfiguration> getDefaultConfiguration() override { return {}; }
};

constexpr GUID someGuid = {1, 2, 3, {4}};

DepthProcessorData* dataOf(const BareDepthNode& node) { return node.getDepthProcessorData(); }
ColorProcessorData* dataOf(const BareColorNode& node) { return node.getColorProcessorData(); }
AudioProcessorData* dataOf(const BareAudioNode& node) { return node.getAudioProcessorData(); }

template<typename Node>
class NodeTest : public testing::Test {
protected:
    static constexpr bool isAudio = std::is_same_v<Node, BareAudioNode>;
    static constexpr GUID device = isAudio ? AUDIO_DEVICE : VIDEO_DEVICE;
    static constexpr GUID otherDevice = isAudio ? VIDEO_DEVICE : AUDIO_DEVICE;
    static constexpr int number = isAudio ? 3 : std::is_same_v<Node, BareColorNode> ? 2 : 1;

    NodeTest() {
        store.deviceGuid = device;
        store.node.emplace().hardwareIds = {0x1000, 0x2000, 0, 0};
        event.path = "camera/0";
    }

    void initialize() { node.initialize(&event, &store, &data); }

    bool isUnlinked() const {
        return !node.getAVDeviceProxy() && !node.getDescriptorStore() && !dataOf(node);
    }

    Script script;
    RecordStore store;
    NodeEvent event;
    std::remove_pointer_t<decltype(dataOf(std::declval<Node&>()))> data;
    Node node{someGuid};
};

using NodeKinds = testing::Types<BareDepthNode, BareColorNode, BareAudioNode>;
TYPED_TEST_SUITE(NodeTest, NodeKinds);

TYPED_TEST(NodeTest, InitializeLinksTheDeviceThatTheStoreNames) {
    EXPECT_TRUE(this->isUnlinked());
    this->initialize();
    ASSERT_NE(this->node.getAVDeviceProxy(), nullptr);
    EXPECT_TRUE(this->node.getAVDeviceProxy()->isProxified());
    EXPECT_EQ(this->node.getDescriptorStore(), &this->store);
    EXPECT_EQ(dataOf(this->node), &this->data);
    std::int64_t product = 0;
    int pathLength = 0;
    EXPECT_EQ(this->node.readBuffer(nullptr, 0, &product, &pathLength), 77) << "the device's own answer";
    EXPECT_EQ(product, 0x2000) << "the device has the store";
    EXPECT_EQ(pathLength, 8) << "the device has the event";
    this->event.path = "camera/42";
    this->initialize();
    this->node.readBuffer(nullptr, 0, &product, &pathLength);
    EXPECT_EQ(pathLength, 9) << "it is another device";
    this->node.dispose();
    EXPECT_TRUE(this->isUnlinked());
    this->node.dispose();
}

TYPED_TEST(NodeTest, FailedInitializeLeavesANodeThatCanBeDisposedOrInitializedAgain) {
    const auto initialize = [this] { this->initialize(); };
    this->store.deviceGuid.reset();
    EXPECT_EQ(failure(initialize), "6: couldn't find GUID NULL_IMPL");
    EXPECT_TRUE(this->isUnlinked());
    this->node.dispose();
    this->store.deviceGuid = TestFixture::otherDevice;
    EXPECT_EQ(failure(initialize), "6: ImplType mismatch");
    this->store.deviceGuid = TestFixture::device;
    this->script.onCall = [](int slot, deviceRequest*) {
        if (slot == 5)
            throw Plugin::IOPluginException("no such device");
    };
    EXPECT_EQ(failure(initialize), "4: no such device");
    this->script.onCall = [](int, deviceRequest*) {};
    this->initialize();
    // What is wrong before a device is made leaves the device of before.
    const auto* const proxy = this->node.getAVDeviceProxy();
    RecordStore without;
    EXPECT_EQ(failure([this] { this->node.initialize(nullptr, &this->store, nullptr); }).front(), '3');
    EXPECT_EQ(failure([this] { this->node.initialize(&this->event, nullptr, nullptr); }).front(), '3');
    EXPECT_EQ(failure([&] { this->node.initialize(&this->event, &without, nullptr); }).front(), '6');
    EXPECT_EQ(this->node.getAVDeviceProxy(), proxy);
    EXPECT_EQ(this->node.getDescriptorStore(), &this->store);
    EXPECT_EQ(dataOf(this->node), &this->data);
    this->node.dispose();
    EXPECT_TRUE(this->isUnlinked());
}

TYPED_TEST(NodeTest, ResetIsNotSupportedByDefault) {
    const char* const names[] = {"", "depth", "color", "audio"};
    EXPECT_EQ(failure([this] { this->node.resetDevice(); }),
              std::string("5: Reset Device operation is not supported by this ") +
                  names[TestFixture::number] + " node implementation");
}

TEST(Nodes, RefuseTheOptionalOperations) {
    BareDepthNode depth(someGuid);
    EXPECT_EQ(failure([&] { depth.setConfiguration(nullptr); }), "5: setConfiguration: Not supported");
    EXPECT_EQ(failure([&] { depth.process(nullptr); }), "5: operation not supported");
    BareAudioNode audio(someGuid);
    EXPECT_EQ(failure([&] { audio.setInputMixerLevel(0.5F); }),
              "1: Setting mixer level is not supported by this device");
    EXPECT_EQ(failure([&] { audio.setMute(true); }), "1: Setting mute is not supported by this device");
}

} // namespace
} // namespace Testing
