#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <zentara/io/audio_device_proxy.h>
#include <zentara/io/av_device_proxy_thread.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/utils/format.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/signal.h>

#include "io/device_script.h"
#include "support/scoped_variable.h"
#include "support/seams.h"

namespace Testing {

using Zentara::IO::deviceRequest;

/// Far above what anything here takes; reached only by a fault.
constexpr unsigned long patience = 60000;

/// A point where a device waits until the test lets it go on.
class Gate {
public:
    void pass() {
        arrived.set();
        way.wait();
        left.set();
    }
    void awaitArrival() { ASSERT_EQ(0, arrived.timedWait(patience)); }

    /// Lets one through that has arrived or is about to; returns when it needs the gate no more.
    void open() {
        way.set();
        ASSERT_EQ(0, left.timedWait(patience));
    }

private:
    Zentara::Utils::Threading::Signal arrived;
    Zentara::Utils::Threading::Signal way;
    Zentara::Utils::Threading::Signal left;
};

/// A function that may be exchanged while a device still runs the former one.
template<typename Signature>
class Behaviour {
public:
    using Function = std::function<Signature>;

    explicit Behaviour(Function initial) { *this = std::move(initial); }
    Behaviour& operator=(Function next) {
        const Zentara::Utils::Threading::AutoLock hold(lock);
        present = std::make_shared<Function>(std::move(next));
        return *this;
    }
    template<typename... Arguments>
    auto operator()(Arguments... arguments) {
        lock.acquire();
        const std::shared_ptr<Function> called = present;
        lock.release();
        return (*called)(arguments...);
    }

private:
    Zentara::Utils::Threading::Mutex lock;
    std::shared_ptr<Function> present;
};

/// Records what the fixture devices are called for, and does what the test says then.
class Script final : public DeviceScript {
public:
    struct Call {
        int slot;
        std::thread::id thread;
    };

    Behaviour<void(int slot, deviceRequest* request)> onCall{[](int, deviceRequest*) {}};
    Behaviour<bool()> onCancel{[] { return false; }};

    void created() override { ++living; }
    void destroyed() override { --living; }
    void loaded(int change) override { libraries += change; }
    void called(int slot, deviceRequest* request) override {
        {
            const Zentara::Utils::Threading::AutoLock hold(lock);
            recorded.push_back({slot, std::this_thread::get_id()});
        }
        onCall(slot, request);
    }
    bool cancel() override { return onCancel(); }

    [[nodiscard]] int livingDevices() const { return living; }

    /// Libraries of broken devices that came while this script was there and have not left.
    [[nodiscard]] int loadedLibraries() const { return libraries; }

    /// What was called since the last time.
    std::vector<Call> takeCalls() {
        const Zentara::Utils::Threading::AutoLock hold(lock);
        return std::exchange(recorded, {});
    }
    std::vector<int> takeSlots() {
        std::vector<int> slots;
        for (const Call& call : takeCalls())
            slots.push_back(call.slot);
        return slots;
    }

private:
    const Zentara::TestSupport::ScopedVariable address{
        variable,
        Zentara::Utils::Format("%{:x}") % reinterpret_cast<std::uintptr_t>(static_cast<DeviceScript*>(this))};
    std::atomic<int> living{0};
    std::atomic<int> libraries{0};
    Zentara::Utils::Threading::Mutex lock;
    std::vector<Call> recorded;
};

/// Time limits for one test.
class TuningGuard {
public:
    ~TuningGuard() { set(2000, 10000, 50); }

    void set(std::uint32_t timeout, std::uint32_t stuck, std::uint32_t slice) {
        Seams::setProxyLimits(timeout, stuck, slice);
    }
};

/// Hosts reach a proxy's initialisation through a node.
struct VideoProxy : Zentara::IO::VideoDeviceProxy {
    using VideoDeviceProxy::dispose;
    using VideoDeviceProxy::initialize;
    using VideoDeviceProxy::VideoDeviceProxy;
};
struct AudioProxy : Zentara::IO::AudioDeviceProxy {
    using AudioDeviceProxy::AudioDeviceProxy;
    using AudioDeviceProxy::dispose;
    using AudioDeviceProxy::initialize;
};

/// A reference on the worker.
class Worker {
public:
    Worker() : worker(Zentara::IO::AVDeviceProxyThread::instance()) {}
    ~Worker() {
        if (worker)
            worker->release();
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    Zentara::IO::AVDeviceProxyThread* operator->() const { return worker; }
    void exit() { static_cast<Zentara::Utils::Threading::Runnable*>(worker)->exit(); }

    /// Gives the reference to somebody else.
    Zentara::IO::AVDeviceProxyThread* detach() { return std::exchange(worker, nullptr); }

    /// Waits until everything that was submitted before has been executed.
    void settle() {
        auto* const request = new deviceRequest(nullptr, Zentara::IO::RequestType(99));
        worker->processRequest(request, patience);
        static_cast<Zentara::Utils::Refcounted*>(request)->decref();
    }

private:
    Zentara::IO::AVDeviceProxyThread* worker;
};

/// The fixture of everything that runs devices. After each test the worker must be gone: a new one must come when
/// it is asked for, and not the old one, which was told to stop.
class DeviceTest : public testing::Test {
protected:
    void TearDown() override {
        const int retired = Seams::retiredWorkers();
        {
            Worker last;
            EXPECT_NO_THROW(last.exit());
        }
        EXPECT_LE(Seams::retiredWorkers(), retired) << "it has ended, and is not left to its thread";
        Worker fresh;
        EXPECT_NO_THROW(fresh.settle());
    }

    Script script;
    TuningGuard tuning;
};

} // namespace Testing
