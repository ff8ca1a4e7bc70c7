#include <gmock/gmock.h>

#include <zentara/core/guids.h>
#include <zentara/core/periodic_operation.h>
#include <zentara/core/plugin_manager.h>
#include <zentara/node_event.h>
#include <zentara/plugin/plugin_exceptions.h>

#include "core/nodes/bare_nodes.h"
#include "core/nodes/fixtures/guids.h"
#include "core/nodes/record_store.h"
#include "support/plugin_failure.h"

namespace Zentara {
// The host's own: nodes only keep the pointer.
class DepthProcessorData {};
class ColorProcessorData {};
class AudioProcessorData {};
} // namespace Zentara

namespace Testing {
namespace {

using Zentara::TestSupport::failure;

constexpr GUID someGuid = {1, 2, 3, {4}};

template<typename Node>
struct KindOf;
template<>
struct KindOf<BareDepthNode> {
    using Data = DepthProcessorData;
    static Data* data(const BareDepthNode& node) { return node.getDepthProcessorData(); }
    static constexpr GUID device = VIDEO_DEVICE;
    static constexpr GUID otherDevice = AUDIO_DEVICE;
    static constexpr int number = 1;
    static constexpr const char* name = "depth";
};
template<>
struct KindOf<BareColorNode> {
    using Data = ColorProcessorData;
    static Data* data(const BareColorNode& node) { return node.getColorProcessorData(); }
    static constexpr GUID device = VIDEO_DEVICE;
    static constexpr GUID otherDevice = AUDIO_DEVICE;
    static constexpr int number = 2;
    static constexpr const char* name = "color";
};
template<>
struct KindOf<BareAudioNode> {
    using Data = AudioProcessorData;
    static Data* data(const BareAudioNode& node) { return node.getAudioProcessorData(); }
    static constexpr GUID device = AUDIO_DEVICE;
    static constexpr GUID otherDevice = VIDEO_DEVICE;
    static constexpr int number = 3;
    static constexpr const char* name = "audio";
};

template<typename Node>
class NodeTest : public testing::Test {
protected:
    using Kind = KindOf<Node>;

    NodeTest() {
        store.deviceGuid = Kind::device;
        store.node.emplace().hardwareIds = {0x1000, 0x2000, 0, 0};
        event.path = "camera/0";
    }

    void initialize() { node.initialize(&event, &store, &data); }

    bool isUnlinked() const {
        return !node.getAVDeviceProxy() && !node.getDescriptorStore() && !Kind::data(node);
    }

    RecordStore store;
    NodeEvent event;
    typename Kind::Data data;
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
    EXPECT_EQ(TestFixture::Kind::data(this->node), &this->data);
    std::int64_t product = 0;
    int pathLength = 0;
    EXPECT_EQ(this->node.readBuffer(nullptr, 0, &product, &pathLength), ReadBufferStatus_OK);
    EXPECT_EQ(product, 0x2000) << "the device has the store";
    EXPECT_EQ(pathLength, 8) << "the device has the event";
    this->node.dispose();
    EXPECT_TRUE(this->isUnlinked());
    this->node.dispose();
}

TYPED_TEST(NodeTest, SecondInitializeReplacesTheFirst) {
    this->initialize();
    this->event.path = "camera/42";
    this->initialize();
    std::int64_t product = 0;
    int pathLength = 0;
    this->node.readBuffer(nullptr, 0, &product, &pathLength);
    EXPECT_EQ(pathLength, 9);
}

TYPED_TEST(NodeTest, FailedInitializeLeavesANodeThatCanBeDisposedOrInitializedAgain) {
    const auto initialize = [this] { this->initialize(); };
    this->store.deviceGuid.reset();
    EXPECT_EQ(failure(initialize), std::pair(6, std::string("couldn't find GUID NULL_IMPL")));
    EXPECT_TRUE(this->isUnlinked());
    this->node.dispose();
    this->store.deviceGuid = TestFixture::Kind::otherDevice;
    EXPECT_EQ(failure(initialize), std::pair(6, std::string("ImplType mismatch")));
    this->store.deviceGuid = TestFixture::Kind::device;
    this->event.path = "refused";
    EXPECT_EQ(failure(initialize), std::pair(4, std::string("no such device")));
    this->event.path = "camera/0";
    this->initialize();
    this->node.dispose();
    EXPECT_TRUE(this->isUnlinked());
}

TYPED_TEST(NodeTest, AnotherInitializeWithoutADeviceLeavesTheFirst) {
    this->initialize();
    const auto* const proxy = this->node.getAVDeviceProxy();
    RecordStore without;
    EXPECT_THROW(this->node.initialize(&this->event, &without, nullptr),
                 Plugin::InitializationPluginException);
    EXPECT_EQ(this->node.getAVDeviceProxy(), proxy);
    EXPECT_EQ(this->node.getDescriptorStore(), &this->store);
    EXPECT_EQ(TestFixture::Kind::data(this->node), &this->data);
}

TYPED_TEST(NodeTest, InitializeNeedsEventAndStore) {
    this->initialize();
    EXPECT_THROW(this->node.initialize(nullptr, &this->store, nullptr), Plugin::ArgumentPluginException);
    EXPECT_THROW(this->node.initialize(&this->event, nullptr, nullptr), Plugin::ArgumentPluginException);
    EXPECT_FALSE(this->isUnlinked()) << "what was refused changes nothing";
    this->node.initialize(&this->event, &this->store, nullptr);
}

TYPED_TEST(NodeTest, ResetIsNotSupportedByDefault) {
    EXPECT_EQ(failure([this] { this->node.resetDevice(); }),
              std::pair(5, std::string("Reset Device operation is not supported by this ") +
                               TestFixture::Kind::name + " node implementation"));
}

TYPED_TEST(NodeTest, KnowsKindAndVersion) {
    EXPECT_EQ(TypeParam::getImplType(), TestFixture::Kind::number);
    int major = -1;
    int minor = -1;
    int patch = -1;
    TypeParam::getPluginVersion(&major, &minor, &patch);
    EXPECT_EQ(std::vector({major, minor, patch}), std::vector({0, 1, 0}));
}

TEST(AudioNode, MixerLevelAndMuteAreWrongConfigurations) {
    BareAudioNode node(someGuid);
    EXPECT_EQ(failure([&] { node.setInputMixerLevel(0.5F); }),
              std::pair(1, std::string("Setting mixer level is not supported by this device")));
    EXPECT_EQ(failure([&] { node.setMute(true); }),
              std::pair(1, std::string("Setting mute is not supported by this device")));
}

TEST(DepthNode, DefaultsOfTheOptionalOperations) {
    BareDepthNode node(someGuid);
    int major = 7;
    int minor = 7;
    node.getVersions(major, minor);
    EXPECT_EQ(major + minor, 0);
    EXPECT_EQ(failure([&] { node.setConfiguration(nullptr); }),
              std::pair(5, std::string("setConfiguration: Not supported")));
    EXPECT_EQ(failure([&] { node.process(nullptr); }), std::pair(5, std::string("operation not supported")));
    EXPECT_EQ(node.getMaximumRawBytesPerPixel(), 8U);
    EXPECT_EQ(node.getPhaseScaling(), 1.0F);
    EXPECT_EQ(node.getRange(), 0.0F);
    EXPECT_EQ(node.getDVPFrameMode(), 6);
    EXPECT_TRUE(node.readTemperatures().empty());
    EXPECT_TRUE(node.readTemperature(nullptr).empty());
    EXPECT_EQ(node.readAccelerometer(nullptr), AccelerationInternal());
    EXPECT_TRUE(node.getImageRegistrationCalibration().empty());
    EXPECT_TRUE(node.getTemperatureCalibration(Zentara::DepthNode::CameraMode_0).empty());
    EXPECT_EQ(node.getTemperatureCalibration(), TemperatureCalibration());
    EXPECT_EQ(node.getCyclicErrorCorrection().getCurrentMode(), -1);
    EXPECT_EQ(node.getDiagnosticData(), DiagnosticData());
    EXPECT_EQ(node.getSerialNumber(), "");
    EXPECT_EQ(node.getAccelerometerCalibration(), AccelerationInternal());
    EXPECT_FALSE(node.getEnableVideoSync());

    // These do nothing, with whatever they are given.
    node.configurePeriodicOperations({});
    node.setIlluminationLevel(Zentara::DepthNode::CameraMode_1, 100);
    node.setCalibration(nullptr);
    node.setDiagnosticData({});
    node.reloadROMLayout(true);
    node.setEnableVideoSync(nullptr, true);
}

TEST(NodePlugin, WorksThroughTheManagerAndItsDeviceFollowsIt) {
    Core::PluginManager* const manager = Core::PluginManager::instance();
    ASSERT_NE(manager, nullptr);
    const auto node = Utils::SmartPtr<Core::DepthNodeInterface>::adopt(static_cast<Core::DepthNodeInterface*>(
        static_cast<Core::Plugin*>(manager->createInstance(DEPTH_NODE, Core::ImplType_DEPTH_NODE))));
    manager->release();
    RecordStore store;
    store.deviceGuid = VIDEO_DEVICE;
    store.node.emplace();
    NodeEvent event;
    event.path = "camera/0";
    node->initialize(&event, &store, nullptr);
    std::int64_t timestamp = 0;
    int length = 0;
    EXPECT_EQ(node->readBuffer(nullptr, 0, &timestamp, &length), ReadBufferStatus_OK);
    EXPECT_EQ(length, 8);
    node->enableStreaming(nullptr);
    node->disableStreaming();
    // The node goes without dispose: its device goes with it.
}

} // namespace
} // namespace Testing
