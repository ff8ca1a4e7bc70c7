#include "support/virtual_slot.h"

#include <zentara/utils/refcounted.h>
#include <zentara/utils/runnable.h>
#include <zentara/utils/thread.h>

#include <gtest/gtest.h>

namespace Zentara::Utils {
namespace {

using Tests::virtualSlot;

struct OpenRunnable : Threading::Runnable {
    static void check() {
        EXPECT_EQ(virtualSlot(&OpenRunnable::run), 2u);
        EXPECT_EQ(virtualSlot(&OpenRunnable::exit), 3u);
        EXPECT_EQ(virtualSlot(&OpenRunnable::running), 4u);
        EXPECT_EQ(virtualSlot(&OpenRunnable::enter), 5u);
        EXPECT_EQ(virtualSlot(&OpenRunnable::leave), 6u);
        EXPECT_EQ(virtualSlot(&OpenRunnable::exitRequested), 7u);
    }
};

struct OpenThread : Threading::Thread {
    static void check() {
        EXPECT_EQ(virtualSlot(&OpenThread::start), 2u);
        EXPECT_EQ(virtualSlot(&OpenThread::stop), 3u);
        EXPECT_EQ(virtualSlot(&OpenThread::wait), 4u);
        EXPECT_EQ(virtualSlot(&OpenThread::exit), 5u);
        EXPECT_EQ(virtualSlot(&OpenThread::exitRequested), 6u);
        EXPECT_EQ(virtualSlot(&OpenThread::setName), 7u);
        EXPECT_EQ(virtualSlot(&OpenThread::getName), 8u);
    }
};

TEST(VirtualSlots, Refcounted) {
    EXPECT_EQ(virtualSlot(&Refcounted::incref), 0u);
    EXPECT_EQ(virtualSlot(&Refcounted::decref), 1u);
    EXPECT_EQ(virtualSlot(&Refcounted::WeakReference::promote), 2u);
    EXPECT_EQ(virtualSlot(&Refcounted::WeakReference::clone), 3u);
}

TEST(VirtualSlots, Runnable) { OpenRunnable::check(); }

TEST(VirtualSlots, Thread) { OpenThread::check(); }

} // namespace
} // namespace Zentara::Utils
