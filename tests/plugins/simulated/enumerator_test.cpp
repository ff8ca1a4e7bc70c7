#include <filesystem>
#include <thread>

#include <gmock/gmock.h>

#include "tests/plugins/camera_host.h"

namespace Zentara {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

constexpr unsigned long patience = 30'000; // milliseconds; far more than any machine needs
constexpr std::size_t allNodes = 9;        // three of each of three cameras

std::vector<std::string> pathsOf(const std::vector<NodeEvent>& nodes) {
    std::vector<std::string> paths;
    for (const NodeEvent& node : nodes)
        paths.push_back(node.path);
    return paths;
}

/// The enumerator of the real plug-in library.
class SimulatedEnumerator : public testing::Test {
protected:
    void TearDown() override { enumerator->dispose(); }

    /// The nodes of the next events, all of which are of that type.
    std::vector<NodeEvent> next(std::size_t count, ExternalEventType type) {
        std::vector<NodeEvent> nodes;
        ExternalEvent event;
        while (nodes.size() < count && events.timedPop(event, patience)) {
            EXPECT_EQ(event.type, type);
            EXPECT_GT(event.timeMicros, 0);
            nodes.push_back(event.node);
        }
        return nodes;
    }
    std::vector<NodeEvent> arrivals(std::size_t count) { return next(count, ExternalEventType_NODE_ARRIVED); }
    std::vector<NodeEvent> removals(std::size_t count) { return next(count, ExternalEventType_NODE_REMOVED); }

    std::vector<NodeEvent> listed() {
        std::vector<NodeEvent> nodes{NodeEvent()};
        enumerator->enumerate(nodes);
        return nodes;
    }

    Utils::Collection::Queue<ExternalEvent> events;
    Utils::SmartPtr<IO::EnumeratorInterface> enumerator =
        TestSupport::makePlugin<IO::EnumeratorInterface>(Simulated::enumeratorGuid);
};

TEST_F(SimulatedEnumerator, ASecondInitializeReplacesTheFirstWhileItRuns) {
    Utils::Collection::Queue<ExternalEvent> before;
    enumerator->initialize(&before, nullptr);
    enumerator->execute();
    ExternalEvent event;
    EXPECT_TRUE(before.timedPop(event, patience));
    enumerator->initialize(&events, nullptr);
    EXPECT_THAT(listed(), SizeIs(allNodes));
    const std::size_t told = before.size();
    enumerator->execute();
    enumerator->execute(); // a thread that lives is left alone
    EXPECT_THAT(arrivals(allNodes), SizeIs(allNodes));
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(before.size(), told) << "the thread of the first has ended";
    enumerator->exit();
    do
        enumerator->execute(); // one that has ended is replaced, and tells everything again
    while (events.empty());
    EXPECT_THAT(arrivals(allNodes), SizeIs(allNodes));
}

TEST_F(SimulatedEnumerator, CanBeAskedWhileItEnds) {
    const auto store = TestSupport::makePlugin<Core::DescriptorStoreInterface>(Cameras::descriptorStoreGuid);
    for (int round = 0; round < 20; ++round) {
        store->initialize();
        enumerator->initialize(&events, store->getDescriptorStore());
        enumerator->execute();
        std::thread asker([this] {
            while (!listed().empty()) {
            }
        });
        EXPECT_THAT(arrivals(allNodes), SizeIs(allNodes));
        enumerator->dispose();
        store->dispose(); // nobody looks at it any more
        asker.join();
    }
    EXPECT_THAT(listed(), SizeIs(0)) << "without a bus there is nothing";
}

/// The same with a file that says which cameras are plugged in.
class PluggedCameras : public SimulatedEnumerator {
protected:
    void start(const std::string& cameras) {
        host.plug(cameras);
        enumerator->initialize(&events, nullptr);
        enumerator->execute();
    }

    TestSupport::CameraHost host;
};

TEST_F(PluggedCameras, ComeAndGoWhileTheThreadRuns) {
    start(R"({"model": "ZS570", "serialNumber": "A"}, {"model": "ZS570", "serialNumber": "B"})");
    const std::vector<NodeEvent> first = arrivals(6);
    ASSERT_THAT(pathsOf(first), ElementsAre("simulated:A/depth", "simulated:A/color", "simulated:A/audio",
                                            "simulated:B/depth", "simulated:B/color", "simulated:B/audio"));
    EXPECT_EQ(first[0].serialNumber, "A");
    EXPECT_EQ(first[0].deviceIndex, 0U);
    EXPECT_EQ(first[3].deviceIndex, 1U);

    host.plug(R"({"model": "ZS570", "serialNumber": "B"})");
    EXPECT_THAT(pathsOf(removals(3)),
                ElementsAre("simulated:A/depth", "simulated:A/color", "simulated:A/audio"));
    EXPECT_FALSE(enumerator->isPresent(first[0]));
    EXPECT_TRUE(enumerator->isPresent(first[3]));

    host.plug(R"({"model": "ZS345"}, {"model": "ZS570", "serialNumber": "B"},
            {"model": "ZS570", "serialNumber": "A"})");
    const std::vector<NodeEvent> back = arrivals(6);
    ASSERT_THAT(pathsOf(back),
                ElementsAre("simulated:SIM0345/depth", "simulated:SIM0345/color", "simulated:SIM0345/audio",
                            "simulated:A/depth", "simulated:A/color", "simulated:A/audio"));
    EXPECT_EQ(back[3].deviceIndex, 0U) << "its number was free again";
    EXPECT_EQ(listed()[3], first[3]) << "what stayed is described as before";
}

TEST_F(PluggedCameras, AWrongFileOrNoneChangesNothingAndIsReportedOnce) {
    start(R"({"model": "ZS570"})");
    EXPECT_THAT(arrivals(3), SizeIs(3));
    const std::pair<std::string, std::string> rows[] = {
        {"{", "line 1: syntax error"},
        {"{\"format\": 1,\n\"cameras\": [{\"model\": \"ZS999\"}]}",
         "line 2, cameras[0].model: no camera 'ZS999' is described; known: ZS570 ZS258 ZS345"},
        {"{\"format\": 1, \"cameras\": [{\"model\": \"ZS570\"}, {\"model\": \"ZS570\"}]}",
         "cameras[1]: another camera has the serial number 'SIM0570'"},
        {"{\"format\": 1, \"cameras\": [{\"model\": \"ZS570\", \"serial\": \"A\"}]}",
         "cameras[0].serial: there is no such field"},
    };
    for (const auto& [text, complaint] : rows) {
        host.write(text);
        const std::vector<NodeEvent> reported = next(1, ExternalEventType_ERROR);
        ASSERT_THAT(reported, SizeIs(1));
        EXPECT_EQ(reported[0].path, host.file());
        EXPECT_THAT(reported[0].name, HasSubstr(complaint));
        EXPECT_THAT(listed(), SizeIs(3));
    }
    std::error_code busy; // on Windows while the enumerator reads the file
    do {
        std::filesystem::remove(TestSupport::TemporaryDirectory::fromUtf8(host.file()), busy);
    } while (busy);
    EXPECT_THAT(next(1, ExternalEventType_ERROR), SizeIs(1));
    EXPECT_THAT(listed(), SizeIs(3));
    host.plug("");
    EXPECT_THAT(removals(3), SizeIs(3)) << "without a further error before it";
    EXPECT_THAT(listed(), SizeIs(0));
}

// A pipe would hold the reader back, a device may never end.
TEST_F(PluggedCameras, WhatIsNoFileIsNotRead) {
    const TestSupport::ScopedVariable folder(Simulated::SimulatedBus::variable, host.path());
    start("");
    const std::vector<NodeEvent> reported = next(1, ExternalEventType_ERROR);
    ASSERT_THAT(reported, SizeIs(1));
    EXPECT_THAT(reported[0].name, HasSubstr("it is not a regular file"));
    EXPECT_THAT(listed(), SizeIs(0));
}

} // namespace
} // namespace Zentara
