#include <zentara/core/plugin_manager.h>
#include <zentara/core/plugin_probe.h>

#include <gtest/gtest.h>

#include <zentara/plugin/plugin_exceptions.h>

#include "core/failing_root.h"
#include "core/test_root.h"
#include "support/failing_allocation.h"
#include "support/failure.h"
#include "utils/platform/library_file.h"

using namespace Zentara::Core;
using Zentara::Plugin::InitializationPluginException;
using Zentara::Utils::Platform::isLibraryLoaded;

namespace {

void expectNoRoot() {
    const FailingRoot failing;
    EXPECT_EQ("couldn't get bin directory", Zentara::TestSupport::messageOf<InitializationPluginException>(
                                                [] { PluginManager::instance(); }));
}

// A failed start leaves its reference counted: until it is given back nothing is scanned, and what was there
// before is returned.
TEST(FailingManager, AfterAGoodOneAndThenAgain) {
    const TestRoot root("failing");
    root.add("good");
    PluginManager* const good = PluginManager::instance();
    EXPECT_EQ(1u, good->getGUIDs(ImplType_VIDEO_DEVICE).size());
    good->release();

    expectNoRoot();

    PluginManager* const ended = PluginManager::instance();
    EXPECT_EQ(good, ended);
    EXPECT_TRUE(ended->getGUIDs(ImplType_VIDEO_DEVICE).empty());
    EXPECT_THROW((void)ended->createInstance(fixtureGuid(1), ImplType_VIDEO_DEVICE),
                 InitializationPluginException);
    ended->release();
    ended->release();

    ManagerHold again;
    EXPECT_EQ(1u, again->getGUIDs(ImplType_VIDEO_DEVICE).size());
    auto object = again.create(fixtureGuid(1));
    again.release();
}

/// An object of the host's own, which tells when it goes.
class Lonely : public Plugin {
public:
    explicit Lonely(bool& flag) : Plugin(ImplType_VIDEO_DEVICE, fixtureGuid(1)), destroyed(flag) {}
    ~Lonely() override { destroyed = true; }
    using Plugin::getSharedLibrary;

private:
    bool& destroyed;
};

// The only test of a process that has never had a manager.
TEST(NullManager, ObjectsCountThemselvesOnly) {
    const TestRoot root("null");
    root.add("good");
    expectNoRoot();

    EXPECT_EQ(nullptr, PluginManager::instance());
    bool destroyed = false;
    auto object = Zentara::Utils::makeRefcounted<Lonely>(destroyed);
    auto copy = object;
    EXPECT_EQ(nullptr, object->getSharedLibrary());
    object.reset();
    EXPECT_FALSE(destroyed);
    copy.reset();
    EXPECT_TRUE(destroyed);
    EXPECT_EQ(nullptr, PluginManager::instance());
}

// A start that finds no memory throws and is counted, as above; what it had opened is closed, and nothing is left out.
TEST(FailingManager, LackOfMemoryLeavesEverythingAsItWas) {
    const TestRoot root("memory");
    const std::string path = root.add("good");
    { const ManagerHold first; }
    Zentara::TestSupport::walkAllocations([&](const auto& withoutMemory) {
        PluginManager* manager = nullptr;
        if (withoutMemory([&] { manager = PluginManager::instance(); })) {
            manager = PluginManager::instance();
            manager->release();
        } else {
            EXPECT_EQ(1u, manager->getGUIDs(ImplType_VIDEO_DEVICE).size());
        }
        manager->release();
        EXPECT_FALSE(isLibraryLoaded(path));
        const ManagerHold again;
        EXPECT_NE(nullptr, again.create(fixtureGuid(1)));
    });
}

// The object comes at the next attempt, and the library goes with it: the one that failed has left no use behind.
TEST(FailingManager, AnObjectThatFindsNoMemoryIsNotCounted) {
    const TestRoot root("object");
    const std::string path = root.add("good");
    const ManagerHold manager;
    Zentara::TestSupport::walkAllocations([&](const auto& withoutMemory) {
        Zentara::Utils::SmartPtr<TestObject> object;
        if (withoutMemory([&] { object = manager.create(fixtureGuid(1)); }))
            object = manager.create(fixtureGuid(1));
        EXPECT_TRUE(isLibraryLoaded(path));
        object.reset();
        EXPECT_FALSE(isLibraryLoaded(path));
    });
}

// The file alone is refused, each time, and everything else goes on.
TEST(ThrowingStatic, EndsInTheFilesOwnEntry) {
    const TestRoot root("static");
    const std::string path = root.add("throwing_static", "a");
    root.add("good", "b");
    for (int round = 0; round < 2; ++round) {
        const auto probes = probePluginDirectory(root.pluginDirectory());
        ASSERT_EQ(2u, probes.size());
        EXPECT_EQ(path, probes[0].path);
        EXPECT_EQ(PluginScanStep::Open, probes[0].step);
        EXPECT_NE("", probes[0].found);
        EXPECT_TRUE(probes[1].accepted());

        ManagerHold manager;
        ASSERT_NE(nullptr, manager.operator->());
        EXPECT_EQ(1u, manager->getGUIDs(ImplType_VIDEO_DEVICE).size());
        EXPECT_NE(nullptr, manager.create(fixtureGuid(1)));
    }
}

} // namespace
