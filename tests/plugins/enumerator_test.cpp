#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zentara/core/guids.h>
#include <zentara/core/plugin_manager.h>
#include <zentara/io/enumerator_interface.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara {
namespace {

constexpr unsigned long patience = 30'000; // milliseconds; far more than any machine needs

/// The enumerator of the real plug-in library.
class MockEnumerator : public testing::Test {
protected:
    void SetUp() override {
        manager = Core::PluginManager::instance();
        void* made = manager->createInstance(Core::Guids::MOCK_ENUMERATOR_IMPL, Core::ImplType_ENUMERATOR);
        auto* object = static_cast<Core::Plugin*>(made);
        enumerator =
            Utils::SmartPtr<IO::EnumeratorInterface>::adopt(dynamic_cast<IO::EnumeratorInterface*>(object));
        ASSERT_TRUE(enumerator);
        enumerator->initialize(&events, nullptr);
    }

    void TearDown() override {
        if (enumerator)
            enumerator->dispose();
        enumerator.reset();
        manager->release();
    }

    std::vector<NodeEvent> arrivals(std::size_t count) {
        std::vector<NodeEvent> nodes;
        ExternalEvent event;
        while (nodes.size() < count && events.timedPop(event, patience)) {
            EXPECT_EQ(event.type, ExternalEventType_NODE_ARRIVED);
            EXPECT_GT(event.timeMicros, 0);
            nodes.push_back(event.node);
        }
        return nodes;
    }

    Core::PluginManager* manager = nullptr;
    Utils::Collection::Queue<ExternalEvent> events;
    Utils::SmartPtr<IO::EnumeratorInterface> enumerator;
};

TEST_F(MockEnumerator, AnnouncesTheCamerasNodesAndListsTheSame) {
    enumerator->execute();
    const std::vector<NodeEvent> arrived = arrivals(2);
    ASSERT_EQ(arrived.size(), 2U);
    EXPECT_EQ(arrived[0].nodeType, NodeType_DEPTH);
    EXPECT_EQ(arrived[1].nodeType, NodeType_AUDIO);
    EXPECT_NE(arrived[0].path, arrived[1].path);
    EXPECT_EQ(arrived[0].parentPath, arrived[1].parentPath);

    std::vector<NodeEvent> listed;
    enumerator->enumerate(listed);
    EXPECT_EQ(listed, arrived);
    EXPECT_TRUE(enumerator->isPresent(arrived[1]));
    NodeEvent stranger = arrived[1];
    stranger.path = "simulated:7/audio";
    EXPECT_FALSE(enumerator->isPresent(stranger));
}

TEST_F(MockEnumerator, EndsItsThreadAndStartsAnew) {
    enumerator->execute();
    EXPECT_EQ(arrivals(2).size(), 2U);
    enumerator->execute(); // a thread that lives is left alone
    enumerator->dispose();
    EXPECT_TRUE(events.empty());
    enumerator->initialize(&events, nullptr);
    enumerator->execute();
    EXPECT_EQ(arrivals(2).size(), 2U);
}

} // namespace
} // namespace Zentara
