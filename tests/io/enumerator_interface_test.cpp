#include <gtest/gtest.h>

#include <zentara/io/enumerator_interface.h>
#include <zentara/plugin/plugin_exceptions.h>

#include "core/nodes/record_store.h"

namespace Testing {
namespace {

using namespace Zentara;

constexpr GUID ENUMERATOR = {0x10000007, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}};

/// Shows what back-ends are given.
class OpenEnumerator : public IO::EnumeratorInterface {
public:
    OpenEnumerator() : EnumeratorInterface(ENUMERATOR) {}

    using EnumeratorInterface::fillEvent;
    using EnumeratorInterface::getNodeFlags;
    using EnumeratorInterface::selectNodeDescriptor;

    void enumerate(std::vector<NodeEvent>& nodes) override { nodes.clear(); }
    bool isPresent(const NodeEvent&) override { return false; }
    std::string getBackendName() override { return "open"; }
    void* run(void*) override { return nullptr; }
};

/// Knows one node, whose product is 5.
class OneNode : public RecordStore {
public:
    bool selectNode(const HardwareIDs& ids, Core::Profile) override { return ids.productId == 5; }
    NodeType getNodeType() const override { return type; }

    NodeType type = NodeType_NONE;
};

TEST(EnumeratorTest, DescribesTheSelectedNode) {
    Utils::Collection::Queue<ExternalEvent> events;
    OpenEnumerator enumerator;
    OneNode store;
    Core::NodeDescriptor& node = store.node.emplace();
    node.hardwareIds = {1, 5, 3, 4};
    node.firstFlags = 0x100000000;
    node.secondFlags = 0x200000000;
    enumerator.initialize(&events, &store);
    NodeEvent event;
    EXPECT_FALSE(enumerator.selectNodeDescriptor(&event, Core::Profile_DEFAULT));
    const std::pair<NodeType, std::uint64_t> rows[]{
        {NodeType_DEPTH, 0x200000000}, {NodeType_COLOR, 0x100000000}, {NodeType_AUDIO, 0}};
    for (const auto& [type, flags] : rows) {
        store.type = type;
        EXPECT_EQ(flags, enumerator.getNodeFlags());
    }
    event.profile = Core::Profile(7);
    enumerator.fillEvent(&event);
    EXPECT_EQ(Core::Profile_DEFAULT, event.profile);
    EXPECT_TRUE(enumerator.selectNodeDescriptor(&event, Core::Profile_DEFAULT));
    EXPECT_THROW(enumerator.fillEvent(nullptr), Plugin::ArgumentPluginException);
    enumerator.dispose();
    EXPECT_EQ(0U, enumerator.getNodeFlags());
    EXPECT_FALSE(enumerator.selectNodeDescriptor(&event, Core::Profile_DEFAULT));
}

} // namespace
} // namespace Testing
