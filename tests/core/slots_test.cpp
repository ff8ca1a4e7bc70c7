#include "support/virtual_slots.h"

#include <zentara/core/plugin.h>
#include <zentara/core/shared_library.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/refcounted.h>
#include <zentara/utils/runnable.h>
#include <zentara/utils/thread.h>

using namespace Zentara::Core;
using namespace Zentara::Plugin;
using namespace Zentara::Utils;
using Testing::expectSlots;
using Testing::virtualSlot;
using Testing::virtualSlotCount;

namespace {

// The helper itself: it sees what is virtual, and in which table.
struct First {
    virtual ~First() = default;
    virtual void one() {}
    void plain() {}
};
struct Second {
    virtual void two() {}
    virtual ~Second() = default;
};
struct Both : First, Second {};

TEST(VirtualSlots, TellsVirtualPlainAndFurtherBasesApart) {
    using TwoOfBoth = void (Both::*)();
    EXPECT_EQ(2, virtualSlot(&First::one));
    EXPECT_EQ(-1, virtualSlot(&First::plain));
    EXPECT_EQ(0, virtualSlot(&Second::two));
    EXPECT_EQ(-2, virtualSlot(static_cast<TwoOfBoth>(&Both::two)));
    EXPECT_EQ(3, virtualSlotCount<First>());
}

struct OpenPlugin : Zentara::Core::Plugin {
    using Zentara::Core::Plugin::decref;
    using Zentara::Core::Plugin::getSharedLibrary;
    using Zentara::Core::Plugin::incref;
};

struct OpenRunnable : Threading::Runnable {
    using Runnable::enter;
    using Runnable::exitRequested;
    using Runnable::leave;
};

struct OpenThread : Threading::Thread {
    using Thread::getName;
    using Thread::setName;
};

TEST(VirtualSlots, OfCountedObjects) {
    expectSlots("Refcounted", {{"incref", virtualSlot(&Refcounted::incref), 0},
                               {"decref", virtualSlot(&Refcounted::decref), 1},
                               {"(count)", virtualSlotCount<Refcounted>(), 4}});
    expectSlots("SharedLibrary", {{"incref", virtualSlot(&SharedLibrary::incref), 0},
                                  {"decref", virtualSlot(&SharedLibrary::decref), 1}});
    expectSlots("Plugin", {{"incref", virtualSlot(&OpenPlugin::incref), 0},
                           {"decref", virtualSlot(&OpenPlugin::decref), 1},
                           {"getSharedLibrary", virtualSlot(&OpenPlugin::getSharedLibrary), 4},
                           {"(count)", virtualSlotCount<Zentara::Core::Plugin>(), 5}});
}

TEST(VirtualSlots, OfThreads) {
    expectSlots("Runnable", {{"run", virtualSlot(&Threading::Runnable::run), 2},
                             {"exit", virtualSlot(&Threading::Runnable::exit), 3},
                             {"running", virtualSlot(&Threading::Runnable::running), 4},
                             {"enter", virtualSlot(&OpenRunnable::enter), 5},
                             {"leave", virtualSlot(&OpenRunnable::leave), 6},
                             {"exitRequested", virtualSlot(&OpenRunnable::exitRequested), 7},
                             {"(count)", virtualSlotCount<Threading::Runnable>(), 8}});
    expectSlots("Thread", {{"start", virtualSlot(&Threading::Thread::start), 2},
                           {"stop", virtualSlot(&Threading::Thread::stop), 3},
                           {"wait", virtualSlot(&Threading::Thread::wait), 4},
                           {"exit", virtualSlot(&Threading::Thread::exit), 5},
                           {"exitRequested", virtualSlot(&Threading::Thread::exitRequested), 6},
                           {"setName", virtualSlot(&OpenThread::setName), 7},
                           {"getName", virtualSlot(&OpenThread::getName), 8},
                           {"(count)", virtualSlotCount<Threading::Thread>(), 9}});
}

TEST(VirtualSlots, OfExceptions) {
    expectSlots("PluginException", {{"what", virtualSlot(&PluginException::what), 2},
                                    {"(count)", virtualSlotCount<PluginException>(), 3}});
    const int counts[] = {virtualSlotCount<StreamingPluginException>(),
                          virtualSlotCount<ConfigurationPluginException>(),
                          virtualSlotCount<TimeoutPluginException>(),
                          virtualSlotCount<ArgumentPluginException>(),
                          virtualSlotCount<IOPluginException>(),
                          virtualSlotCount<NotSupportedPluginException>(),
                          virtualSlotCount<InitializationPluginException>(),
                          virtualSlotCount<InvalidOperationPluginException>(),
                          virtualSlotCount<UnauthorizedAccessPluginException>()};
    for (const int count : counts)
        EXPECT_EQ(3, count);
}

} // namespace
