#include <zentara/core/plugin_manager.h>

#include <atomic>
#include <exception>
#include <thread>

#include <gmock/gmock.h>

#include <zentara/core/shared_library.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/plugin/plugin_exceptions.h>

#include "core/test_root.h"
#include "support/failure.h"
#include "support/log_capture.h"
#include "support/own_exceptions.h"
#include "support/scoped_variable.h"
#include "utils/platform/library_file.h"

using namespace Zentara::Core;
using Zentara::Plugin::InitializationPluginException;
using Zentara::TestSupport::caught;
using Zentara::TestSupport::messageOf;
using Zentara::Utils::SmartPtr;
using Zentara::Utils::Platform::isLibraryLoaded;

namespace {

const GUID good = fixtureGuid(1);
const GUID other = fixtureGuid(2);
const GUID failing = fixtureGuid(3);
const GUID nullMaking = fixtureGuid(4);
const GUID withoutFactory = fixtureGuid(6);

class PluginManagerTest : public testing::Test {
protected:
    TestRoot root{"manager"};
};

TEST_F(PluginManagerTest, ALibraryIsThereAsLongAsItsObjects) {
    const std::string path = root.add("good");
    ManagerHold manager;
    EXPECT_FALSE(isLibraryLoaded(path));

    for (int round = 0; round < 3; ++round) {
        SmartPtr<TestObject> first = manager.create(good);
        SmartPtr<TestObject> second = manager.create(good);
        SmartPtr<TestObject> copy = first;
        EXPECT_TRUE(Zentara::guidEquals(good, first->getGUID()));
        EXPECT_EQ(ImplType_VIDEO_DEVICE, first->getSharedLibrary()->getImplType());
        first.reset();
        second.reset();
        EXPECT_TRUE(isLibraryLoaded(path));
        manager->incref(good);
        copy.reset();
        EXPECT_TRUE(isLibraryLoaded(path)) << "for the host's own use";
        manager->decref(good);
        EXPECT_FALSE(isLibraryLoaded(path));
    }
}

TEST_F(PluginManagerTest, ObjectsOutliveTheHostsManager) {
    const std::string path = root.add("good");
    ManagerHold manager;
    SmartPtr<TestObject> object = manager.create(good);
    manager.release();

    root.add("other");
    {
        // The manager lives on with its object, and its registry with it.
        ManagerHold again;
        EXPECT_EQ(1u, again->getGUIDs(ImplType_VIDEO_DEVICE).size());
    }
    object.reset();
    EXPECT_FALSE(isLibraryLoaded(path));

    ManagerHold fresh;
    EXPECT_EQ(2u, fresh->getGUIDs(ImplType_VIDEO_DEVICE).size());
}

TEST_F(PluginManagerTest, SaysWhatItCannotMake) {
    root.add("good");
    root.add("no_factory");
    const std::string gone = root.add("other");
    ManagerHold manager;
    root.remove("other");
    const auto device = ImplType_VIDEO_DEVICE;
    const std::string unknown = "couldn't find GUID {63,0,0,{0,0,0,0,0,0,0,0}}";

    const auto refusal = [](auto operation) { return messageOf<InitializationPluginException>(operation); };
    const auto make = [&](const GUID& guid, ImplType type) {
        return refusal([&] { (void)manager->createInstance(guid, type); });
    };
    EXPECT_EQ(unknown, make(fixtureGuid(99), device));
    EXPECT_EQ(unknown, refusal([&] { manager->incref(fixtureGuid(99)); }));
    EXPECT_EQ(unknown, refusal([&] { manager->decref(fixtureGuid(99)); }));
    const GUID null = {0x1024966D, 0x1634, 0x4756, {0x9A, 0xBC, 0x99, 0x97, 0x91, 0x59, 0x1F, 0x45}};
    EXPECT_EQ("couldn't find GUID NULL_IMPL", make(null, device));
    EXPECT_EQ("ImplType mismatch", make(good, ImplType_AUDIO_DEVICE));
    EXPECT_EQ("couldn't find function: createInstance", make(withoutFactory, device));
    EXPECT_FALSE(isLibraryLoaded(root.path("no_factory")));
    EXPECT_EQ("couldn't open: " + gone, make(other, device));
}

TEST_F(PluginManagerTest, PluginsAreListedByKindAndAPlainNullCountsAsUse) {
    root.add("good");
    root.add("null_making");
    root.add("interpreter");
    ManagerHold manager;
    EXPECT_EQ(2u, manager->getGUIDs(ImplType_VIDEO_DEVICE).size());
    EXPECT_TRUE(manager->getGUIDs(ImplType_DEPTH_NODE).empty());
    EXPECT_TRUE(manager->getGUIDs(static_cast<ImplType>(-1)).empty());
    ASSERT_EQ(1u, manager->getGUIDs(ImplType_PARAMETER_INTERPRETER).size());
    const GUID interpreter = manager->getGUIDs(ImplType_PARAMETER_INTERPRETER).front();
    for (const auto& [plugin, guid, type] : {std::tuple{"null_making", nullMaking, ImplType_VIDEO_DEVICE},
                                             {"interpreter", interpreter, ImplType_PARAMETER_INTERPRETER}}) {
        EXPECT_EQ(nullptr, manager->createInstance(guid, type)) << plugin;
        EXPECT_TRUE(isLibraryLoaded(root.path(plugin))) << plugin;
        manager->decref(guid);
        EXPECT_FALSE(isLibraryLoaded(root.path(plugin))) << plugin;
    }
}

TEST_F(PluginManagerTest, AThrowingFactoryLeavesTheLibraryForTheNextAttempt) {
    const std::string path = root.add("failing");
    ManagerHold manager;

    EXPECT_THROW((void)manager.create(failing), Zentara::Plugin::IOPluginException);
    EXPECT_TRUE(isLibraryLoaded(path));
    // It fails once after each loading, so it is still the same one.
    SmartPtr<TestObject> object = manager.create(failing);
    object.reset();
    EXPECT_FALSE(isLibraryLoaded(path));
}

// The plug-ins make the exceptions themselves: what describes these goes with them.
TEST_F(PluginManagerTest, ExceptionsOutliveThePluginThatMadeThem) {
    const std::string throwing = root.add("failing");
    const std::string path = root.add("good");
    const auto thrownBy = [](auto operation) {
        try {
            operation();
        } catch (...) {
            return std::current_exception();
        }
        return std::exception_ptr();
    };
    const std::vector<Zentara::TestSupport::Caught> arrivals = Zentara::TestSupport::ownArrivals();
    for (int which = 1; which <= static_cast<int>(arrivals.size()); ++which) {
        const Zentara::TestSupport::ScopedVariable chosen("ZENTARA_TEST_OWN_EXCEPTION",
                                                          std::to_string(which).c_str());
        const Zentara::TestSupport::LogCapture log;
        std::exception_ptr fromFactory;
        std::exception_ptr fromObject;
        {
            ManagerHold manager;
            fromFactory = thrownBy([&] { (void)manager.create(failing); });
            fromObject = thrownBy([&] {
                const SmartPtr<TestObject> object = manager.create(good);
                Zentara::Plugin::callPlugin([&] { object->fail(which); });
            });
        }
        ASSERT_FALSE(isLibraryLoaded(throwing));
        ASSERT_FALSE(isLibraryLoaded(path));
        EXPECT_EQ(arrivals[which - 1], caught(std::exchange(fromFactory, nullptr))) << which;
        EXPECT_EQ(arrivals[which - 1], caught(std::exchange(fromObject, nullptr))) << which;
        EXPECT_EQ(which <= 10 ? 2U : 0U, log.warnings().size()) << which;
    }
}

TEST_F(PluginManagerTest, AnUnregisteredObjectCannotBeShared) {
    struct Stray : Plugin {
        explicit Stray(bool& flag) : Plugin(ImplType_VIDEO_DEVICE, fixtureGuid(99)), destroyed(flag) {}
        ~Stray() override { destroyed = true; }
        using Plugin::decref;
        using Plugin::incref;
        bool& destroyed;
    };
    bool destroyed = false;
    Stray* stray = new Stray(destroyed);
    EXPECT_THROW(stray->incref(), InitializationPluginException);
    // Its own count falls, and the manager is given back, although the library is not found.
    EXPECT_THROW(stray->decref(), InitializationPluginException);
    EXPECT_TRUE(destroyed);
    root.add("good");
    ManagerHold fresh;
    EXPECT_EQ(1u, fresh->getGUIDs(ImplType_VIDEO_DEVICE).size());
}

// Counts of the host's own factory, without manager and file.
TEST(SharedLibraryTest, AHostsFactoryIsCountedButNeverLoaded) {
    static int made = 0;
    SharedLibrary* library = new SharedLibrary([]() -> void* { return &++made; }, ImplType_ENUMERATOR, good);
    EXPECT_EQ(&made, library->createInstance());
    library->release();
    EXPECT_EQ(&made, library->createInstance()) << "held by its use";
    EXPECT_EQ(2, made);
    library->decref();
    library->decref();
}

constexpr int makers = 64;
constexpr int rounds = 20;

/// Objects made, shared and dropped; every other time the object goes after the manager was given back.
void makeObjects(int maker) {
    for (int round = 0; round < rounds; ++round) {
        ManagerHold manager;
        SmartPtr<TestObject> object = manager.create(fixtureGuid(1 + (maker + round) % 2));
        const SmartPtr<TestObject> copy = object;
        if (round % 2 == 0)
            manager.release();
        object.reset();
    }
}

TEST(PluginThreads, ObjectsComeAndGoWhileTheManagerDoes) {
    const TestRoot root("threads");
    const std::string first = root.add("good");
    const std::string second = root.add("other");
    std::atomic<bool> done = false;
    std::thread cycling([&] {
        while (!done)
            ManagerHold();
    });
    std::vector<std::thread> threads;
    for (int maker = 0; maker < makers; ++maker)
        threads.emplace_back(makeObjects, maker);
    for (std::thread& thread : threads)
        thread.join();
    done = true;
    cycling.join();

    EXPECT_FALSE(isLibraryLoaded(first));
    EXPECT_FALSE(isLibraryLoaded(second));
}

} // namespace
