#include "support/virtual_slots.h"

#include <zentara/core/plugin.h>
#include <zentara/core/shared_library.h>
#include <zentara/plugin/plugin_exceptions.h>

using namespace Zentara::Core;
using namespace Zentara::Plugin;
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

// A count of the object alone would forget its library.
template<typename T>
concept CountedAlone = requires(T& object) {
    object.tryIncref();
}
|| requires(T& object) { object.decrefIfLastRef(); };
static_assert(CountedAlone<Zentara::Utils::Refcounted> && !CountedAlone<Zentara::Core::Plugin>);

TEST(VirtualSlots, OfPluginObjects) {
    expectSlots("SharedLibrary", {{"incref", virtualSlot(&SharedLibrary::incref), 0},
                                  {"decref", virtualSlot(&SharedLibrary::decref), 1}});
    expectSlots("Plugin", {{"incref", virtualSlot(&OpenPlugin::incref), 0},
                           {"decref", virtualSlot(&OpenPlugin::decref), 1},
                           {"getSharedLibrary", virtualSlot(&OpenPlugin::getSharedLibrary), 4},
                           {"(count)", virtualSlotCount<Zentara::Core::Plugin>(), 5}});
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
