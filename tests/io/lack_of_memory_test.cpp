// Each allocation of each call fails once, on the caller's thread or on the worker's: the call fails and works the next
// time, and the device, its library and the worker go as ever. Left out are the events of a request and of the worker,
// and its thread: without memory for those the process ends.
#include <optional>

#include <zentara/core/plugin_manager.h>
#include <zentara/core/plugin_probe.h>

#include "io/script.h"
#include "support/failing_allocation.h"
#include "support/log_capture.h"
#include "utils/platform/library_file.h"

namespace Testing {
namespace {

using namespace Zentara;
using namespace Zentara::IO;
using TestSupport::FailingAllocation;

constexpr int open = 10;

class LackOfMemory : public DeviceTest {
protected:
    static void walk(const std::function<void(const TestSupport::WithoutMemory&)>& attempt) {
        TestSupport::walkAllocations(attempt, FailingAllocation::Form::throwing);
    }

    /// The manager is held, so the library is there for as long as somebody uses it.
    void expectEverythingGone() {
        EXPECT_EQ(0, script.livingDevices());
        EXPECT_EQ(retired, Seams::retiredWorkers());
        EXPECT_FALSE(Utils::Platform::isLibraryLoaded(library));
    }

    std::optional<VideoProxy> proxy;
    const int retired = Seams::retiredWorkers();
    const std::string library =
        Core::getPluginDirectory() + "io_leaving_device." + Core::pluginFileExtension();
    const std::shared_ptr<Core::PluginManager> manager{Core::PluginManager::instance(),
                                                       [](Core::PluginManager* held) { held->release(); }};
};

class LackOfMemoryTest : public LackOfMemory, public testing::WithParamInterface<bool> {};
INSTANTIATE_TEST_SUITE_P(Modes, LackOfMemoryTest, testing::Bool(),
                         [](const auto& mode) { return mode.param ? "proxified" : "direct"; });

TEST_P(LackOfMemoryTest, AProxyComesAndGoes) {
    walk([&](const auto& withoutMemory) {
        if (withoutMemory([&] { proxy.emplace(LEAVING_DEVICE, GetParam()); })) {
            EXPECT_EQ(0, script.livingDevices());
            EXPECT_EQ(retired, Seams::retiredWorkers());
            proxy.emplace(LEAVING_DEVICE, GetParam());
        }
        proxy->open();
        proxy.reset();
        expectEverythingGone();
    });
    walk([&](const auto& withoutMemory) {
        proxy.emplace(LEAVING_DEVICE, GetParam());
        EXPECT_FALSE(withoutMemory([&] { proxy.reset(); }));
        expectEverythingGone();
    });
}

// So many calls that the worker's queue needs memory of its own.
TEST_P(LackOfMemoryTest, ACallIsMadeOrNotMade) {
    walk([&](const auto& withoutMemory) {
        proxy.emplace(LEAVING_DEVICE, GetParam());
        script.takeCalls();
        int done = 0;
        const auto callNext = [&] { done % 2 == 0 ? proxy->open() : proxy->close(); };
        const bool threw = withoutMemory([&] {
            for (; done < 70; ++done)
                callNext();
        });
        if (threw) {
            EXPECT_NO_THROW(callNext());
        }
        EXPECT_EQ(static_cast<std::size_t>(done + threw), script.takeSlots().size());
        proxy.reset();
        expectEverythingGone();
    });
}

TEST_F(LackOfMemory, ARequestThatTheWorkerDoesNotGetIsAsItWas) {
    walk([&](const auto& withoutMemory) {
        Worker worker;
        const auto request = Utils::makeRefcounted<deviceRequest>(nullptr, RequestType(99));
        withoutMemory([&] {
            for (int i = 0; i < 70; ++i)
                worker->processRequest(request.get(), patience);
        });
        EXPECT_NO_THROW(worker->processRequest(request.get(), patience));
        worker.settle();
        EXPECT_FALSE(request->failed());
    });
}

// However full the queue's memory is: with some number of requests before it the stop is the one that needs more.
TEST_F(LackOfMemory, AStopThatTheWorkerDoesNotGetIsToldAgain) {
    for (int before = 60; before < 68; ++before) {
        walk([&](const auto& withoutMemory) {
            Worker worker;
            for (int i = 0; i < before; ++i)
                worker.settle();
            if (withoutMemory([&] { worker.exit(); })) {
                EXPECT_NO_THROW(worker.exit()) << "it is not taken for told";
            }
        });
    }
}

TEST_F(LackOfMemory, AFailureReachesTheCallerWithoutItsText) {
    const TestSupport::LogCapture log;
    proxy.emplace(LEAVING_DEVICE, true);
    bool hit = true;
    for (std::size_t n = 0; hit; ++n) {
        std::optional<FailingAllocation> failing;
        script.onCall = [&](int slot, deviceRequest*) {
            if (slot == open) {
                failing.emplace(n, FailingAllocation::Form::throwing);
                throw Plugin::IOPluginException("a text for which the string needs memory");
            }
            hit = failing->hit();
            failing.reset();
        };
        EXPECT_THROW(proxy->open(), Plugin::IOPluginException) << n;
        try {
            proxy->close();
        } catch (const Plugin::IOPluginException&) {
            proxy->close(); // the failing one was the script's own, for its record of the call
        }
    }
    script.onCall = [](int, deviceRequest*) {};
    EXPECT_NO_THROW(proxy->open());
    proxy.reset();
    expectEverythingGone();
}

} // namespace
} // namespace Testing
