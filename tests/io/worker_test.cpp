#include <chrono>
#include <optional>

#include <gmock/gmock.h>

#include <zentara/color_configuration.h>
#include <zentara/depth_configuration.h>
#include <zentara/io/streaming_requests.h>
#include <zentara/io/xu_device_requests.h>
#include <zentara/utils/smart_ptr.h>
#include <zentara/utils/weak_ptr.h>

#include "io/owned_requests.h"
#include "io/script.h"
#include "support/failure.h"

namespace Testing {
namespace {

using namespace Zentara;
using namespace Zentara::IO;
using testing::ElementsAre;
using testing::IsEmpty;
using Utils::SmartPtr;
using Utils::Threading::Signal;

constexpr bool proxified = true;
const std::string done = "nothing was thrown";

/// A request that tells when it has gone.
class TracedRequest : public deviceRequest {
public:
    TracedRequest(RequestType type, Signal& end, AVDeviceInterface* device = nullptr)
        : deviceRequest(device, type), gone(end) {}

    void drop() { static_cast<Utils::Refcounted*>(this)->decref(); }

protected:
    ~TracedRequest() override { gone.set(); }

private:
    Signal& gone;
};

/// A request that runs the test's code on the worker: its device's answer to it.
class WorkerTest : public DeviceTest {
protected:
    void SetUp() override {
        proxy.emplace(VIDEO_DEVICE, proxified);
        script.takeCalls();
    }
    void TearDown() override {
        script.onCall = [](int, deviceRequest*) {};
        proxy.reset();
        DeviceTest::TearDown();
    }

    /// The device holds up each call of this operation until the gate opens.
    void hold(int heldSlot, Gate& gate) {
        script.onCall = [heldSlot, &gate](int slot, deviceRequest*) {
            if (slot == heldSlot)
                gate.pass();
        };
    }

    /// Opens the device and tells which it is.
    AVDeviceInterface* openedDevice() {
        AVDeviceInterface* device = nullptr;
        script.onCall = [&](int, deviceRequest* request) { device = request->device(); };
        proxy->open();
        script.onCall = [](int, deviceRequest*) {};
        return device;
    }

    SmartPtr<deviceRequest> requestToClose() {
        return Utils::makeRefcounted<deviceRequest>(openedDevice(), RequestType_CLOSE);
    }

    /// On the worker, whose other one, the proxy's, is gone with it.
    AVDeviceProxyThread* lastReference() {
        Worker worker;
        proxy.reset();
        return worker.detach();
    }

    template<typename Operation>
    static std::string outcome(Operation operation) {
        return TestSupport::messageOf<Plugin::PluginException>(operation);
    }

    std::optional<VideoProxy> proxy;
    static constexpr int open = 10;
    static constexpr int close = 11;
};

// Fresh, handed over, at the worker: 1, 2, 3. After success the creator's reference is the last; after an exception it
// is left behind, and while the call still runs there is the worker's besides.
TEST_F(WorkerTest, ReferencesAreCountedExactly) {
    Worker worker;
    Signal gone;

    auto* executed = new TracedRequest(RequestType(99), gone);
    worker->processRequest(executed, patience);
    worker.settle();
    EXPECT_TRUE(executed->decrefIfLastRef());
    EXPECT_TRUE(gone.isSet());

    auto* failed = new TracedRequest(RequestType_OPEN, gone);
    EXPECT_THROW(worker->processRequest(failed, patience), Plugin::NotSupportedPluginException);
    worker.settle();
    EXPECT_TRUE(failed->decrefIfLastRef());
    EXPECT_TRUE(gone.isSet());

    worker.exit();
    auto* rejected = new TracedRequest(RequestType_CLOSE, gone);
    EXPECT_EQ("RequestType_CLOSE: I/O request rejected",
              outcome([&] { worker->processRequest(rejected, patience); }));
    EXPECT_TRUE(rejected->decrefIfLastRef());
    EXPECT_TRUE(gone.isSet());
    // A second stop request is rejected like any other.
    EXPECT_THROW(worker.exit(), Plugin::IOPluginException);
    proxy->dispose();
}

TEST_F(WorkerTest, ARequestCanBeSubmittedAgain) {
    AVDeviceInterface* const device = openedDevice();
    script.takeCalls();
    Worker worker;
    const auto request = SmartPtr<deviceRequest>::adopt(new deviceRequest(device, RequestType_CLOSE));
    worker->processRequest(request.get(), patience);
    worker->processRequest(request.get(), patience);
    EXPECT_THAT(script.takeSlots(), ElementsAre(close, close));
    worker.settle();

    // Not while it runs, nor once its caller has given it up: it would return as if it had run.
    const auto refused = [&](deviceRequest* spent) {
        EXPECT_THROW(worker->processRequest(spent, patience), Plugin::InvalidOperationPluginException);
    };
    Gate gate;
    hold(close, gate);
    Signal gone;
    auto* const slow = new TracedRequest(RequestType_CLOSE, gone, device);
    EXPECT_THROW(worker->processRequest(slow, 20), Plugin::TimeoutPluginException);
    EXPECT_TRUE(slow->getCancelled());
    EXPECT_FALSE(slow->decrefIfLastRef()) << "the worker has it";
    refused(slow);
    gate.open();
    worker.settle();
    refused(slow);
    EXPECT_THAT(script.takeSlots(), ElementsAre(close));
    auto* const failing = new deviceRequest(nullptr, RequestType_CLOSE);
    EXPECT_THROW(worker->processRequest(failing, patience), Plugin::NotSupportedPluginException);
    refused(failing);
    // One that the worker refused has not been touched.
    worker.exit();
    for (int i = 0; i < 2; ++i)
        EXPECT_THROW(worker->processRequest(request.get(), patience), Plugin::IOPluginException);
    EXPECT_EQ(device, request->device());
    static_cast<Utils::Refcounted*>(failing)->decref();
    slow->drop();
    EXPECT_TRUE(gone.isSet());
}

// The reference of a caller who got an exception stays; what the request holds does not.
TEST_F(WorkerTest, AFailedRequestLeavesAHusk) {
    AVDeviceInterface* device = nullptr;
    script.onCall = [&](int, deviceRequest* request) {
        device = request->device();
        throw Plugin::StreamingPluginException("no stream");
    };
    EXPECT_EQ("no stream", outcome([&] { proxy->open(); }));
    auto* const request = new deviceRequest(device, RequestType_CLOSE);
    SmartPtr<deviceRequest> other(request);
    {
        Worker worker;
        EXPECT_EQ("no stream", outcome([&] { worker->processRequest(request, patience); }));
        EXPECT_EQ(device, request->device()) << "somebody else has it";
    }
    script.onCall = [](int, deviceRequest*) {};
    proxy.reset();
    EXPECT_EQ(1, script.livingDevices());
    other = nullptr;
    EXPECT_EQ(0, script.livingDevices());
    EXPECT_EQ(nullptr, request->device());
    request->ackStartOfIO(); // its signals are there as long as who made it
    EXPECT_TRUE(request->failed());
    EXPECT_EQ(Plugin::PluginExceptionType_STREAMING, request->getFailure().type);
    EXPECT_EQ("no stream", request->getFailure().message);
    EXPECT_EQ(RequestType_CLOSE, request->type());
    static_cast<Utils::Refcounted*>(request)->decref();
}

// While it runs it keeps all; the worker gives it back.
TEST_F(WorkerTest, ATimedOutRequestLeavesItsHuskWhenItEnds) {
    deviceRequest* held = nullptr;
    const auto leavesHusk = [&](const std::function<void()>& call, const std::function<bool()>& isKept) {
        tuning.set(20, 60000, 10);
        Gate gate;
        script.onCall = [&](int, deviceRequest* request) {
            held = request;
            gate.pass();
        };
        EXPECT_THAT(outcome(call), testing::StartsWith("processRequest: I/O timeout: RequestType_"));
        gate.awaitArrival();
        EXPECT_TRUE(isKept());
        gate.open();
        tuning.set(2000, 60000, 10);
        script.onCall = [](int, deviceRequest*) {};
        Worker().settle();
        EXPECT_FALSE(isKept());
    };
    struct OwnColor : ColorConfiguration {};
    struct OwnDepth : DepthConfiguration {};
    auto color = Utils::makeRefcounted<OwnColor>();
    auto depth = Utils::makeRefcounted<OwnDepth>();
    const Utils::WeakPtr<OwnColor> watchedColor(color);
    const Utils::WeakPtr<OwnDepth> watchedDepth(depth);
    leavesHusk(
        [&] { proxy->enableStreaming(SmartPtr<ColorConfiguration>(std::exchange(color, nullptr)), {}); },
        [&] { return !watchedColor.expired(); });
    leavesHusk(
        [&] { proxy->enableStreaming(SmartPtr<DepthBaseConfiguration>(std::exchange(depth, nullptr))); },
        [&] { return !watchedDepth.expired(); });
    std::uint8_t bytes[100];
    leavesHusk([&] { proxy->recv(1, 2, sizeof bytes, bytes, false); },
               [&] { return dynamic_cast<RequestBytes&>(*held).stored.capacity() != 0; });
    // Nor does one that the worker refuses keep anything.
    Worker().exit();
    color = Utils::makeRefcounted<OwnColor>();
    const Utils::WeakPtr<OwnColor> refused(color);
    EXPECT_THROW(proxy->enableStreaming(SmartPtr<ColorConfiguration>(std::exchange(color, nullptr)), {}),
                 Plugin::IOPluginException);
    EXPECT_TRUE(refused.expired());
    proxy.reset();
    EXPECT_EQ(0, script.livingDevices());
}

TEST_F(WorkerTest, TheRealTimeoutIsTwoSeconds) {
    Gate gate;
    hold(open, gate);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ("processRequest: I/O timeout: RequestType_OPEN", outcome([&] { proxy->open(); }));
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(1990));
    EXPECT_LT(waited, std::chrono::seconds(9));
    gate.open();
    script.onCall = [](int, deviceRequest*) {};
    EXPECT_NO_THROW(proxy->open());
}

// Nor does the time run in the queue, even behind a call that nobody waits for any more.
TEST_F(WorkerTest, SignalsThatWereLeftSetShortenNoWait) {
    tuning.set(30, 60000, 10);
    AVDeviceInterface* const device = openedDevice();
    Gate gate;
    script.onCall = [&](int, deviceRequest*) { gate.pass(); };
    std::thread slow([&] { EXPECT_NE(done, outcome([&] { proxy->open(); })); });
    gate.awaitArrival();
    Worker worker;
    const auto request = Utils::makeRefcounted<deviceRequest>(device, RequestType_CLOSE);
    request->ackStartOfIO();
    request->ack();
    Signal back;
    std::thread waiting([&] {
        EXPECT_EQ(done, outcome([&] { worker->processRequest(request.get(), 1500); }));
        back.set();
    });
    EXPECT_EQ(-1, back.timedWait(1800)) << "the time ran before the start";
    gate.open();
    gate.awaitArrival();
    EXPECT_EQ(-1, back.timedWait(50)) << "not done yet";
    gate.open();
    slow.join();
    waiting.join();
}

TEST_F(WorkerTest, AnAcceptedCancelIsWaitedFor) {
    tuning.set(20, 60000, 10);
    Gate gate;
    Signal callerWent;
    script.onCall = [&](int, deviceRequest* request) {
        request->setIOPending(true);
        gate.pass();
        EXPECT_EQ(-1, callerWent.timedWait(100));
    };
    script.onCancel = [&, caller = std::this_thread::get_id()] {
        EXPECT_EQ(caller, std::this_thread::get_id());
        gate.open();
        return true;
    };
    EXPECT_EQ("processRequest: I/O timeout: RequestType_OPEN", outcome([&] { proxy->open(); }));
    callerWent.set();
    Worker().settle();
}

// Kept so: the device is asked with the request locked.
TEST_F(WorkerTest, TheRequestIsLockedWhileItsDeviceIsAskedToCancel) {
    tuning.set(patience, 60000, 10);
    Gate gate;
    deviceRequest* held = nullptr;
    script.onCall = [&](int, deviceRequest* request) {
        held = request;
        request->setIOPending(true);
        gate.pass();
    };
    Signal locked;
    std::thread locker;
    script.onCancel = [&] {
        locker = std::thread([&] {
            held->lock();
            locked.set();
            held->unlock();
        });
        EXPECT_EQ(-1, locked.timedWait(20));
        return true;
    };
    std::thread caller([&] { EXPECT_EQ(done, outcome([&] { proxy->open(); })); });
    gate.awaitArrival();
    EXPECT_TRUE(held->cancelIO());
    locker.join();
    gate.open();
    caller.join();
}

TEST_F(WorkerTest, ACancelWaitsForTheDeviceToGiveTheRequestBack) {
    tuning.set(20, 60000, 10);
    Gate gate;
    script.onCall = [&](int, deviceRequest* request) {
        request->lock();
        request->setIOPending(true);
        while (!request->getCancelled())
            std::this_thread::yield();
        request->unlock();
        gate.pass();
    };
    std::atomic<int> cancels = 0;
    script.onCancel = [&] {
        ++cancels;
        gate.open();
        return true;
    };
    EXPECT_EQ("processRequest: I/O timeout: RequestType_OPEN", outcome([&] { proxy->open(); }));
    EXPECT_EQ(1, cancels);
}

TEST_F(WorkerTest, ADeviceThatKeepsTheRequestLockedHoldsNobodyUp) {
    tuning.set(20, 200, 10);
    Gate gate;
    script.onCall = [&](int, deviceRequest* request) {
        request->lock();
        request->setIOPending(true);
        gate.pass();
        request->unlock();
    };
    script.onCancel = []() -> bool {
        ADD_FAILURE() << "cancelled without the lock";
        return true;
    };
    EXPECT_EQ("processRequest: I/O timeout: RequestType_OPEN", outcome([&] { proxy->open(); }));
    gate.open();
    // With the device still at it, one that ends in time is not waited for any longer either.
    tuning.set(20, 60000, 10);
    std::atomic<bool> locked = false;
    script.onCall = [&](int, deviceRequest* request) {
        request->lock();
        locked = true;
        while (!request->getCancelled())
            std::this_thread::yield();
    };
    EXPECT_EQ("processRequest: I/O timeout: RequestType_CLOSE", outcome([&] { proxy->close(); }));
    EXPECT_TRUE(locked);
    script.onCall = [](int, deviceRequest*) {};
    tuning.set(2000, 10000, 10);
    EXPECT_NO_THROW(proxy->close());
}

// The worker is the only one who has it then, for a moment; somebody else may have it for good.
TEST_F(WorkerTest, ARequestThatSomebodyKeepsIsLeftToHim) {
    tuning.set(2000, 100, 10);
    Signal gone;
    auto* const request = new TracedRequest(RequestType_THREAD_UNINITIALIZE, gone);
    static_cast<Utils::Refcounted*>(request)->incref();
    EXPECT_EQ("RequestType_THREAD_UNINITIALIZE: the request is still in use",
              outcome([&] { Seams::dropWhenLast(*request); }));
    tuning.set(2000, 60000, 10);
    std::thread keeper([&] { request->drop(); });
    Seams::dropWhenLast(*request);
    keeper.join();
    EXPECT_TRUE(gone.isSet());
}

TEST_F(WorkerTest, ACancelThatIsAcceptedInVainIsNotWaitedForForEver) {
    tuning.set(20, 200, 10);
    Gate gate;
    script.onCall = [&](int, deviceRequest* request) {
        if (request)
            request->setIOPending(true);
        gate.pass();
    };
    script.onCancel = [] { return true; };
    EXPECT_EQ("processRequest: I/O timeout: RequestType_OPEN", outcome([&] { proxy->open(); }));
    script.onCancel = []() -> bool { throw Plugin::IOPluginException("cancel broke down"); };
    gate.open();
    Worker().settle();
    tuning.set(20, 10000, 10);
    EXPECT_EQ("processRequest: I/O timeout: RequestType_CLOSE", outcome([&] { proxy->close(); }));
    gate.open();
    Worker().settle();
    tuning.set(2000, 10000, 10);
}

TEST_F(WorkerTest, ADeviceThatDoesNotReturnHoldsNobodyUp) {
    tuning.set(50, 300, 10);
    Gate gate;
    hold(open, gate);
    EXPECT_EQ("processRequest: I/O timeout: RequestType_OPEN", outcome([&] { proxy->open(); }));
    // The last release does not wait for ever for it. The proxy's own thread-uninitialise is withdrawn like the rest.
    const int before = Seams::retiredWorkers();
    proxy.reset();
    EXPECT_EQ(before + 1, Seams::retiredWorkers());
    EXPECT_EQ(1, script.livingDevices()) << "the device of a call that runs";
    gate.open();
    tuning.set(2000, 10000, 10);
    const auto slots = script.takeSlots();
    EXPECT_THAT(slots, ElementsAre(open, 4));
    // Another worker has taken its place.
    VideoProxy next(VIDEO_DEVICE, proxified);
    EXPECT_NO_THROW(next.close());
    EXPECT_THAT(script.takeSlots(), ElementsAre(6, close));
    // What was left to its thread goes when the thread has ended and a worker is made anew.
    next.dispose();
    while (Seams::retiredWorkers() > before) {
        std::this_thread::yield();
        const Worker another;
    }
    EXPECT_EQ(0, script.livingDevices());
}

// The worker comes to it when the device lets it go on.
TEST_F(WorkerTest, AWithdrawnRequestIsNeverExecuted) {
    tuning.set(50, 300, 10);
    Gate gate;
    hold(open, gate);
    EXPECT_EQ("processRequest: I/O timeout: RequestType_OPEN", outcome([&] { proxy->open(); }));
    EXPECT_EQ("processRequest: I/O timeout: RequestType_CLOSE", outcome([&] { proxy->close(); }));
    gate.open();
    tuning.set(2000, 10000, 10);
    Worker().settle();
    EXPECT_THAT(script.takeSlots(), ElementsAre(open));
}

// Never opened: the process has to end with a thread inside the device. What the thread uses is never destroyed.
TEST_F(WorkerTest, TheProcessEndsWithAStuckDevice) {
    tuning.set(20, 100, 10);
    auto* const gate = new Gate;
    static auto* const forEver = gate;
    hold(open, *forEver);
    EXPECT_NE(done, outcome([&] { proxy->open(); }));
    proxy.reset();
    tuning.set(2000, 10000, 50);
}

TEST_F(WorkerTest, RequestsBehindTheStopFail) {
    Worker worker;
    Gate gate;
    script.onCall = [&](int, deviceRequest*) {
        gate.pass();
        // On its own thread the worker can wait for no request, nor for itself to stop; but it will stop.
        EXPECT_THAT(outcome([&] { proxy->close(); }), testing::StartsWith("RequestType_CLOSE: "));
        EXPECT_THROW(worker.exit(), Plugin::InvalidOperationPluginException);
    };
    std::thread a([&] { EXPECT_EQ(done, outcome([&] { proxy->open(); })); });
    gate.awaitArrival();
    std::thread b(
        [&] { EXPECT_EQ("RequestType_CLOSE: I/O request rejected", outcome([&] { proxy->close(); })); });
    std::thread c([&] {
        EXPECT_EQ("RequestType_DISABLE: I/O request rejected",
                  outcome([&] { proxy->disableStreaming(true); }));
    });
    gate.open();
    a.join();
    b.join();
    c.join();
    script.onCall = [](int, deviceRequest*) {};
    // Until now the worker has taken requests only to fail them; the stop request ends that.
    EXPECT_NO_THROW(worker.exit());
    EXPECT_EQ("RequestType_CLOSE: I/O request rejected", outcome([&] { proxy->close(); }));
    EXPECT_THAT(script.takeSlots(), ElementsAre(open));
}

TEST_F(WorkerTest, ItsOwnThreadCanGiveBackTheLastReference) {
    const auto request = requestToClose();
    AVDeviceProxyThread* const last = lastReference();
    script.onCall = [&](int slot, deviceRequest*) {
        if (slot == close)
            last->release();
    };
    EXPECT_EQ(done, outcome([&] { last->processRequest(request.get(), patience); }));
    script.onCall = [](int, deviceRequest*) {};
    VideoProxy next(VIDEO_DEVICE, proxified);
    EXPECT_NO_THROW(next.open());
}

// The last release takes no lock: while it waits for a device, another worker can come.
TEST_F(WorkerTest, TheNextWorkerDoesNotWaitForTheLast) {
    tuning.set(2000, 20000, 10);
    const auto request = requestToClose();
    AVDeviceProxyThread* const last = lastReference();
    Gate gate;
    hold(close, gate);
    std::thread caller(
        [&] { EXPECT_EQ(done, outcome([&] { last->processRequest(request.get(), patience); })); });
    gate.awaitArrival();

    const int retired = Seams::retiredWorkers();
    std::vector<std::thread> releases;
    AVDeviceProxyThread* next = last;
    // Whichever comes first, release or instance; the pause only bounds the number of threads on a busy machine.
    for (; next == last; next = AVDeviceProxyThread::instance()) {
        releases.emplace_back([last] { last->release(); });
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    auto* const other = new deviceRequest(nullptr, RequestType(99));
    EXPECT_EQ(done, outcome([&] { next->processRequest(other, patience); }));
    static_cast<Utils::Refcounted*>(other)->decref();
    gate.open();
    caller.join();
    for (std::thread& release : releases)
        release.join();
    EXPECT_EQ(retired, Seams::retiredWorkers()) << "the last one was given up";
    next->release();
}

TEST_F(WorkerTest, RequestsThatDoNotFitTheirDeviceFail) {
    AudioProxy audio(AUDIO_DEVICE, proxified);
    AVDeviceInterface* video = nullptr;
    AVDeviceInterface* sound = nullptr;
    script.onCall = [&](int slot, deviceRequest* request) {
        (slot == open ? video : sound) = request->device();
    };
    proxy->open();
    audio.close();
    script.takeCalls();
    script.onCall = [](int, deviceRequest*) {};

    Worker worker;
    // False when the request was refused, with the not-supported kind and untouched by the device.
    const auto accepted = [&](deviceRequest* made) {
        const auto request = SmartPtr<deviceRequest>::adopt(made);
        try {
            worker->processRequest(made, patience);
            return true;
        } catch (const Plugin::NotSupportedPluginException&) {
            EXPECT_THAT(script.takeSlots(), IsEmpty());
            return false;
        }
    };
    EXPECT_FALSE(accepted(new deviceRequest(nullptr, RequestType_OPEN)));
    EXPECT_FALSE(accepted(new deviceRequest(nullptr, RequestType_THREAD_INITIALIZE)));
    EXPECT_FALSE(accepted(new enableDepthRequest(sound, nullptr)));
    EXPECT_FALSE(accepted(new enableAudioRequest(video, nullptr, 0, false)));
    EXPECT_FALSE(accepted(new deviceRequest(video, RequestType_ENABLE_DEPTH)));
    EXPECT_FALSE(accepted(new xuProxyRequest(video, RequestType_OPEN, 0, 0, 0, nullptr)));
    EXPECT_FALSE(accepted(new xuProxyRequest(video, RequestType_DISABLE, 0, 0, 0, nullptr)));
    EXPECT_FALSE(accepted(new xuProxyRequest(video, RequestType_XURECV, 0, 0, 0, nullptr)));
    EXPECT_TRUE(accepted(new xuProxyRequest(video, RequestType_XUSEND, 0, 0, 0, nullptr)));
    EXPECT_THAT(script.takeSlots(), ElementsAre(18));
    // No effect and no failure.
    EXPECT_TRUE(accepted(new setDeviceRegionOfInterestRequest(video, {})));
    EXPECT_TRUE(accepted(new setOutputFormatRequest(video, setOutputFormatRequest::OutputFormat_DEPTH)));
    EXPECT_TRUE(accepted(new deviceRequest(video, RequestType(99))));
    EXPECT_THAT(script.takeSlots(), IsEmpty());
}

/// Many threads at once.
class WorkerRaceTest : public DeviceTest {
protected:
    static void inParallel(int threads, const std::function<void()>& body) {
        std::vector<std::thread> running;
        for (int i = 0; i < threads; ++i)
            running.emplace_back(body);
        for (std::thread& thread : running)
            thread.join();
    }
};

TEST_F(WorkerRaceTest, TheWorkerComesAndGoesUnderLoad) {
    std::atomic<int> executed = 0;
    constexpr int threads = 64;
    constexpr int rounds = 500;
    inParallel(threads, [&] {
        for (int round = 0; round < rounds; ++round) {
            Worker worker;
            worker.settle();
            ++executed;
        }
    });
    EXPECT_EQ(threads * rounds, executed);
}

TEST_F(WorkerRaceTest, ShutdownUnderLoadFailsOrExecutesEachRequest) {
    for (int round = 0; round < 50; ++round) {
        Worker worker;
        std::atomic<int> rejected = 0;
        Signal running;
        std::thread stop([&] {
            running.wait();
            worker.exit();
        });
        inParallel(8, [&] {
            for (bool accepted = true; accepted;) {
                auto* const request = new deviceRequest(nullptr, RequestType(99));
                try {
                    worker->processRequest(request, patience);
                } catch (const Plugin::IOPluginException& rejection) {
                    EXPECT_STREQ("RequestType_UNKNOWN: I/O request rejected", rejection.what());
                    accepted = false;
                    ++rejected;
                }
                static_cast<Utils::Refcounted*>(request)->decref();
                running.set();
            }
        });
        stop.join();
        EXPECT_EQ(8, rejected);
    }
}

} // namespace
} // namespace Testing
