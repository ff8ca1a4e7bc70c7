#include <gmock/gmock.h>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/io/enumerator_interface.h>
#include <zentara/utils/signal.h>

#include "io/script.h"

namespace Testing {
namespace {

using namespace Zentara;
using Utils::Collection::Queue;
using Utils::Threading::Signal;

constexpr GUID ENUMERATOR = {0x10000007, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}};

/// Puts one event into the queue and waits to be told to end.
class OneEvent : public IO::EnumeratorInterface {
public:
    OneEvent() : EnumeratorInterface(ENUMERATOR) {}

    using EnumeratorInterface::fillEvent;
    using EnumeratorInterface::getNodeFlags;
    using EnumeratorInterface::getNodeType;
    using EnumeratorInterface::selectNodeDescriptor;

    void enumerate(std::vector<NodeEvent>& nodes) override { nodes.clear(); }
    bool isPresent(const NodeEvent&) override { return false; }
    std::string getBackendName() override { return "one event"; }

    void* run(void*) override {
        ++runs;
        getEventQueue()->push({ExternalEventType_NODE_ARRIVED, {}, runs});
        while (!exitRequested())
            wake.wait();
        return nullptr;
    }
    void exit() override {
        EnumeratorInterface::exit();
        wake.set();
    }

    std::int64_t runs = 0;

private:
    Signal wake;
};

class EnumeratorTest : public testing::Test {
protected:
    std::int64_t nextEvent() {
        ExternalEvent event;
        EXPECT_TRUE(events.timedPop(event, patience));
        return event.timeMicros;
    }

    Queue<ExternalEvent> events;
    OneEvent enumerator;
};

TEST_F(EnumeratorTest, AFinishedThreadIsReplaced) {
    for (int run = 1; run <= 3; ++run) {
        enumerator.initialize(&events, nullptr);
        enumerator.execute();
        EXPECT_EQ(run, nextEvent());
        enumerator.dispose();
    }
    // One that has ended by itself as well; as long as it has not, nothing happens.
    enumerator.initialize(&events, nullptr);
    enumerator.execute();
    EXPECT_EQ(4, nextEvent());
    enumerator.exit();
    ExternalEvent event;
    do
        enumerator.execute();
    while (!events.timedPop(event, 1));
    EXPECT_EQ(5, event.timeMicros);
    enumerator.dispose();
}

/// Knows one node, whose product is 5.
class OneNode : public Core::DescriptorStoreRO {
public:
    bool selectNode(const HardwareIDs& ids, Core::Profile) override { return ids.productId == 5; }
    NodeType getNodeType() const override { return type; }
    std::string getNodeName() const override { return "node"; }
    HardwareIDs getNodeHardwareIDs() const override { return {1, 2, 3, 4}; }
    std::uint64_t getDepthFlags() const override { return 0x100000000; }
    std::uint64_t getColorFlags() const override { return 0x200000000; }
    std::uint32_t getNodeIndex() const override { return 6; }
    const Core::DeviceDescriptor* getDeviceDescriptor() const override { return nullptr; }
    const Core::NodeDescriptor* getNodeDescriptor() const override { return nullptr; }

    NodeType type = NodeType_DEPTH;
};

TEST_F(EnumeratorTest, DescribesTheSelectedNode) {
    OneNode store;
    enumerator.initialize(&events, &store);
    NodeEvent event;
    event.path = "kept";
    event.profile = Core::Profile(7);
    event.productId = 5;
    EXPECT_TRUE(enumerator.selectNodeDescriptor(&event, Core::Profile_DEFAULT));
    EXPECT_EQ(0x100000000U, enumerator.getNodeFlags());
    store.type = NodeType_COLOR;
    EXPECT_EQ(0x200000000U, enumerator.getNodeFlags());
    store.type = NodeType_AUDIO;
    EXPECT_EQ(0U, enumerator.getNodeFlags());
    enumerator.fillEvent(&event);
    EXPECT_EQ(NodeType_AUDIO, event.nodeType);
    EXPECT_EQ(Core::Profile_DEFAULT, event.profile);
    EXPECT_EQ((HardwareIDs{1, 2, 3, 4}), event.hardwareIds());
    EXPECT_EQ("kept node 6", event.path + " " + event.name + " " + std::to_string(event.nodeIndex));
    EXPECT_FALSE(enumerator.selectNodeDescriptor(&event, Core::Profile_DEFAULT));
    EXPECT_THROW(enumerator.fillEvent(nullptr), Plugin::ArgumentPluginException);

    enumerator.dispose();
    EXPECT_EQ(NodeType_NONE, enumerator.getNodeType());
    EXPECT_EQ(0U, enumerator.getNodeFlags());
    EXPECT_FALSE(enumerator.selectNodeDescriptor(&event, Core::Profile_DEFAULT));
}

} // namespace
} // namespace Testing
