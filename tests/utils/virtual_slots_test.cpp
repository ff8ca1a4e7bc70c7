#include "support/virtual_slots.h"

#include <zentara/utils/refcounted.h>
#include <zentara/utils/runnable.h>
#include <zentara/utils/thread.h>

namespace Zentara::Utils {
namespace {

using Testing::expectSlots;
using Testing::virtualSlot;
using Testing::virtualSlotCount;

struct OpenRunnable : Threading::Runnable {
    using Runnable::enter;
    using Runnable::exitRequested;
    using Runnable::leave;
};

struct OpenThread : Threading::Thread {
    using Thread::getName;
    using Thread::setName;
    using Thread::Thread;
};

TEST(VirtualSlots, Refcounted) {
    expectSlots("Refcounted", {{"incref", virtualSlot(&Refcounted::incref), 0},
                               {"decref", virtualSlot(&Refcounted::decref), 1},
                               {"end", virtualSlotCount<Refcounted>(), 4}});
    using Weak = Refcounted::WeakReference;
    expectSlots("WeakReference", {{"promote", virtualSlot(&Weak::promote), 2},
                                  {"clone", virtualSlot(&Weak::clone), 3},
                                  {"end", virtualSlotCount<Weak>(), 4}});
}

TEST(VirtualSlots, Runnable) {
    expectSlots("Runnable", {{"run", virtualSlot(&OpenRunnable::run), 2},
                             {"exit", virtualSlot(&OpenRunnable::exit), 3},
                             {"running", virtualSlot(&OpenRunnable::running), 4},
                             {"enter", virtualSlot(&OpenRunnable::enter), 5},
                             {"leave", virtualSlot(&OpenRunnable::leave), 6},
                             {"exitRequested", virtualSlot(&OpenRunnable::exitRequested), 7},
                             {"end", virtualSlotCount<OpenRunnable>(), 8}});
}

TEST(VirtualSlots, Thread) {
    expectSlots("Thread", {{"start", virtualSlot(&OpenThread::start), 2},
                           {"stop", virtualSlot(&OpenThread::stop), 3},
                           {"wait", virtualSlot(&OpenThread::wait), 4},
                           {"exit", virtualSlot(&OpenThread::exit), 5},
                           {"exitRequested", virtualSlot(&OpenThread::exitRequested), 6},
                           {"setName", virtualSlot(&OpenThread::setName), 7},
                           {"getName", virtualSlot(&OpenThread::getName), 8},
                           {"end", virtualSlotCount<OpenThread>(), 9}});
}

} // namespace
} // namespace Zentara::Utils
