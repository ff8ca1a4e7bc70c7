#include "support/virtual_slots.h"

#include <zentara/core/plugin.h>

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

// A count of the object alone would forget its library.
template<typename T>
concept CountedAlone = requires(T& object) {
    object.tryIncref();
}
|| requires(T& object) { object.decrefIfLastRef(); };
static_assert(CountedAlone<Zentara::Utils::Refcounted> && !CountedAlone<Zentara::Core::Plugin>);

} // namespace
