#include <zentara/io/av_device_proxy_thread.h>

#include <atomic>
#include <chrono>
#include <exception>
#include <new>
#include <thread>
#include <utility>

#include <zentara/utils/format.h>
#include <zentara/utils/queue.h>
#include <zentara/utils/thread.h>
#include <zentara/utils/thread_base.h>

#include "io/device_request_impl.h"
#include "io/proxy_tuning.h"
#include "io/queued_request.h"
#include "io/request_execution.h"
#include "io/retired_workers.h"
#include "utils/immortal.h"
#include "utils/platform/library_pin.h"
#include "utils/platform/thread.h"

namespace Zentara::IO {

using Utils::Format;
using Utils::SmartPtr;
using Utils::Threading::AutoLock;
using Utils::Threading::Mutex;
using Utils::Threading::Signal;

namespace {

/// Guards the making of a worker, on the count's step from 0 to 1.
Utils::Immortal<Mutex> classLock;

/// Workers that were left to their threads, linked through their records.
Utils::Immortal<Mutex> retiredLock;
AVDeviceProxyThread* retired ZENTARA_GUARDED_BY(retiredLock.object) = nullptr;
std::atomic<int> retiredCount{0};

/// Being woken takes a thread some 10 us: for a few times that whoever waits may as well look himself.
constexpr std::chrono::microseconds worthLooking{40};

/// Looks, for so long at most, until it is no longer so. Others have the processor meanwhile where they need it.
template<typename Condition>
void lookWhile(Condition isSo) {
    if (!isSo())
        return;
    const auto end = std::chrono::steady_clock::now() + worthLooking;
    do
        std::this_thread::yield();
    while (isSo() && std::chrono::steady_clock::now() < end);
}

/// What the worker is busy with. Shared with the callers, for whom the worker may be gone by the time they look.
class DeviceCall {
public:
    void begin() noexcept { startedAt = now(); }
    void end() noexcept { startedAt = idle; }

    /// True when one and the same call has been running for so long that nobody should wait for its end.
    [[nodiscard]] bool isStuck() const noexcept {
        const std::int64_t start = startedAt;
        return start != idle && now() - start >= Detail::proxyTuning().stuckCallMilliseconds;
    }

    /// The worker takes a reference of a request, and has dropped it.
    void take(const deviceRequest* request) noexcept { held = request; }
    void drop() noexcept { held = nullptr; }
    [[nodiscard]] bool isHeld(const deviceRequest* request) const noexcept { return held == request; }

    /// Returns when the worker holds the request no more. For a caller that has met the acknowledgement, the worker's
    /// last step but this one, and has a reference himself, so that it destroys nothing.
    void awaitDrop(const deviceRequest* request) const noexcept {
        while (isHeld(request))
            std::this_thread::yield();
    }

    /// One who waits for the end of a request, for a scope.
    class Caller {
    public:
        explicit Caller(DeviceCall& of) noexcept : call(of) { ++call.callers; }
        ~Caller() { --call.callers; }
        Caller(const Caller&) = delete;
        Caller& operator=(const Caller&) = delete;

        /// Before he sleeps. Only while he is alone: the worker has others to serve first.
        template<typename HasEnded>
        void lookFor(HasEnded hasEnded) const {
            lookWhile([&] { return !hasEnded() && call.callers == 1; });
        }

    private:
        DeviceCall& call;
    };

private:
    static constexpr std::int64_t idle = -1;

    static std::int64_t now() noexcept {
        using namespace std::chrono;
        return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
    }

    std::atomic<std::int64_t> startedAt{idle};       ///< milliseconds of the steady clock, or idle
    std::atomic<const deviceRequest*> held{nullptr}; ///< compared only, never followed
    std::atomic<int> callers{0};                     ///< that wait
};

/// Waits for the signal; false when the worker is stuck instead of coming to set it.
bool awaitUnlessStuck(Signal& signal, const DeviceCall& call) {
    while (signal.timedWait(Detail::proxyTuning().sliceMilliseconds) != 0) {
        if (call.isStuck())
            return false;
    }
    return true;
}

std::string rejectedMessage(RequestType type) {
    return Format("%: I/O request rejected") % RequestType_toString(type);
}

[[noreturn]] void throwTimeout(RequestType type) {
    throw Plugin::TimeoutPluginException(Format("processRequest: I/O timeout: %") %
                                         RequestType_toString(type));
}

/// Has the device asked to cancel, unless it holds the request's lock until it is done or stuck. What it throws
/// must not take the place of the timeout.
template<typename RequestState>
bool cancelQuietly(RequestState& state, const DeviceCall& call) noexcept {
    try {
        return state.cancelUnless([&] {
            return state.meeting->acknowledged.timedWait(Detail::proxyTuning().sliceMilliseconds) == 0 ||
                   call.isStuck();
        });
    } catch (...) {
        return false;
    }
}

/// Nothing may keep a request from being failed, not even a text for which there is no memory.
template<typename MakeMessage>
void fail(deviceRequest& request, Plugin::PluginExceptionType type, MakeMessage makeMessage) noexcept {
    try {
        request.setFailure(type, makeMessage());
    } catch (...) {
        request.setFailure(type, {});
    }
}

void failWith(deviceRequest& request, const char* what) noexcept {
    fail(request, Plugin::PluginExceptionType_IO,
         [&]() -> std::string { return Format("%: %") % RequestType_toString(request.type()) % what; });
}

} // namespace

struct AVDeviceProxyThread::Impl {
    explicit Impl(AVDeviceProxyThread* owner) : worker(*owner), thread(owner, owner, "AVDeviceProxyThread") {}

    [[nodiscard]] bool isCurrentThread() const { return threadId.load() == std::this_thread::get_id(); }

    /// A child of fork has the record of its parent's worker, but not the thread.
    [[nodiscard]] bool isInherited() const noexcept { return process != Utils::Platform::currentProcessId(); }

    /// False when the worker is stopping. Check, mark and push are one step, so that no request ends up behind the
    /// stop request, where nobody would come to it.
    bool submit(deviceRequest* request) {
        const AutoLock hold(lock);
        if (rejecting)
            return false;
        queue.push(request);
        ++queued;
        rejecting = request->type() == RequestType_NONE;
        return true;
    }

    /// The oldest request, waited for. Who asks one thing after the other is soon back: after a short pause the worker looks
    /// for him before it sleeps.
    deviceRequest* next() {
        using std::chrono::steady_clock;
        const bool isThere = queued > 0;
        const auto begin = isThere ? steady_clock::time_point() : steady_clock::now();
        if (isBrisk)
            lookWhile([this] { return queued <= 0; });
        deviceRequest* const request = queue.pop();
        --queued;
        isBrisk = isThere || steady_clock::now() - begin < worthLooking;
        return request;
    }

    class Turn;

    void submitAndWait(deviceRequest* request, std::uint32_t timeoutMilliseconds);
    void work(deviceRequest* request);
    void drain();
    void requestStop();
    bool stop() noexcept;
    static void retire(AVDeviceProxyThread* worker) noexcept;
    static void reapRetired() noexcept;

    AVDeviceProxyThread& worker;
    /// The process that made the worker; the thread is in no other one.
    const unsigned long process = Utils::Platform::currentProcessId();
    const std::shared_ptr<DeviceCall> call = std::make_shared<DeviceCall>();
    std::atomic<std::thread::id> threadId{};
    /// Set by the thread when it will touch nothing of the worker's any more save what Thread does at its end.
    std::atomic<bool> finished{false};
    Signal end;
    /// The stop request of a worker that gives back its own last reference; nobody waits for it.
    SmartPtr<deviceRequest> ownStop;
    AVDeviceProxyThread* nextRetired = nullptr; ///< guarded by retiredLock

    /// Each request in it is held by its caller, who waits, or has left his reference behind.
    Utils::Collection::Queue<deviceRequest*> queue;
    /// In the queue, whose lock a worker that looks again and again would keep from its callers. For a moment less: it is
    /// counted after the push.
    std::atomic<int> queued{0};
    bool isBrisk = false; ///< the last pause was short; the thread's own
    Mutex lock;
    bool rejecting ZENTARA_GUARDED_BY(lock) = false; ///< true from the stop request on; never false again

    Utils::Threading::Thread thread;
};

/// The worker's reference on a request, from the queue to the acknowledgement, which lets the caller go whatever
/// happens in between.
class AVDeviceProxyThread::Impl::Turn {
public:
    Turn(DeviceCall& current, deviceRequest* request) : call(current), hold(request) { call.take(request); }
    ~Turn() {
        hold->impl->finish();
        hold->ack();
        hold = nullptr;
        call.drop();
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    DeviceCall& call;
    SmartPtr<deviceRequest> hold;
};

AVDeviceProxyThread* AVDeviceProxyThread::m_instance = nullptr;
Mutex& AVDeviceProxyThread::m_lock = classLock.object;
Utils::AtomicInt AVDeviceProxyThread::m_refcount(0);

AVDeviceProxyThread* AVDeviceProxyThread::instance() {
    const AutoLock hold(m_lock);
    if (m_refcount.incrementAndTest()) {
        try {
            Impl::reapRetired();
            m_instance = new AVDeviceProxyThread;
        } catch (...) {
            m_refcount.decrementAndTest();
            throw;
        }
    }
    return m_instance;
}

void AVDeviceProxyThread::release() {
    // Without m_lock: as soon as the count is 0, instance() may put another worker in this one's place. So this one
    // looks at nothing but itself from here on.
    if (!m_refcount.decrementAndTest() || impl->isInherited())
        return;
    if (impl->stop())
        delete this;
    else
        Impl::retire(this);
}

AVDeviceProxyThread::AVDeviceProxyThread() : impl(std::make_unique<Impl>(this)) { impl->thread.start(false); }

AVDeviceProxyThread::~AVDeviceProxyThread() { impl->thread.wait(); }

void AVDeviceProxyThread::processRequest(deviceRequest* request, std::uint32_t timeoutMilliseconds) {
    if (!request)
        throw Plugin::ArgumentPluginException("processRequest: no request");
    const SmartPtr<deviceRequest> hold(request);
    if (!request->impl->enterQueue())
        throw Plugin::InvalidOperationPluginException(
            Format("%: the request is being executed or has failed, and cannot be submitted again") %
            RequestType_toString(request->type()));
    try {
        impl->submitAndWait(request, timeoutMilliseconds);
    } catch (...) {
        // The worker may still come to it: from here on the caller's reference is the worker's.
        request->impl->forsake();
        throw;
    }
    request->impl->comeBack();
}

void* AVDeviceProxyThread::run(void*) {
    impl->threadId = std::this_thread::get_id();
    bool stopSeen = false;
    while (!stopSeen && !exitRequested()) {
        deviceRequest* const request = impl->next();
        stopSeen = request->type() == RequestType_NONE;
        impl->work(request);
    }
    if (!stopSeen)
        impl->drain();
    // The system may give the identifier to another thread, which is then not to be taken for this one.
    impl->threadId = std::thread::id();
    impl->finished = true;
    impl->end.set();
    return nullptr;
}

void AVDeviceProxyThread::executeRequest(deviceRequest* request) {
    try {
        dispatch(*request);
    } catch (const Plugin::PluginException& failure) {
        fail(*request, failure.type(), [&] { return failure.message(); });
    } catch (const std::exception& failure) {
        failWith(*request, failure.what());
    } catch (...) {
        failWith(*request, "unknown exception");
    }
}

void AVDeviceProxyThread::exit() {
    // First: the thread then fails what is queued before the stop request in place of executing it.
    Runnable::exit();
    auto* const request = createQueuedRequest<deviceRequest>(nullptr, RequestType_NONE);
    processRequest(request, Detail::proxyTuning().timeoutMilliseconds);
    request->decref();
}

void AVDeviceProxyThread::Impl::submitAndWait(deviceRequest* request, std::uint32_t timeoutMilliseconds) {
    const RequestType type = request->type();
    deviceRequest::Impl& state = *request->impl;
    // A request that the worker does not get is as it was.
    const auto refuse = [&](const char* reason) {
        state.comeBack();
        throw Plugin::InvalidOperationPluginException(Format("%: %") % RequestType_toString(type) % reason);
    };
    if (isInherited())
        refuse(
            "the device proxy thread runs in the parent of this process, and devices are called there only");
    if (isCurrentThread())
        refuse("a request from the device proxy thread itself would never be executed");
    // Shared, for the worker may be deleted by its last owner as soon as the request is acknowledged.
    const std::shared_ptr<DeviceCall> current = call;
    const DeviceCall::Caller caller(*current);
    bool isSubmitted = false;
    try {
        isSubmitted = submit(request);
    } catch (...) {
        state.comeBack();
        throw;
    }
    if (!isSubmitted) {
        state.comeBack();
        throw Plugin::IOPluginException(rejectedMessage(type));
    }

    // From here on the worker may be gone, once it has acknowledged the request.
    caller.lookFor([&] { return state.isDone() && !current->isHeld(request); });
    // Who loses the withdrawal has been taken up meanwhile, and waits for the end like everybody.
    if (!awaitUnlessStuck(state.meeting->startOfIO, *current) && state.withdraw())
        throwTimeout(type);
    if (state.meeting->acknowledged.timedWait(timeoutMilliseconds) != 0) {
        // A device that says yes ends soon: waited for, so that the caller's next call does not find it busy.
        if (cancelQuietly(state, *current))
            awaitUnlessStuck(state.meeting->acknowledged, *current);
        throwTimeout(type);
    }
    if (request->failed()) {
        // So that it is on this thread, and before the failure is seen, that the request gives its device back.
        current->awaitDrop(request);
        const ProxyFailure failure = request->getFailure();
        Plugin::throwPluginException(failure.type, failure.message);
    }
}

void AVDeviceProxyThread::Impl::work(deviceRequest* request) {
    const Turn turn(*call, request);
    const bool wanted = request->impl->begin();
    // The clock runs before the caller hears of the start, else he could take the worker for idle.
    if (wanted)
        call->begin();
    request->ackStartOfIO();
    if (wanted) {
        worker.executeRequest(request);
        call->end();
    }
}

/// Fails what stands before the stop request.
void AVDeviceProxyThread::Impl::drain() {
    for (bool stopSeen = false; !stopSeen;) {
        deviceRequest* const request = next();
        const Turn turn(*call, request);
        stopSeen = request->type() == RequestType_NONE;
        request->ackStartOfIO();
        if (request->impl->begin() && !stopSeen)
            fail(*request, Plugin::PluginExceptionType_IO, [&] { return rejectedMessage(request->type()); });
    }
}

/// Has the thread end: by a request, without which it would wait for ever.
void AVDeviceProxyThread::Impl::requestStop() {
    if (!isCurrentThread()) {
        thread.exit();
        return;
    }
    worker.Runnable::exit();
    ownStop = Utils::makeRefcounted<deviceRequest>(nullptr, RequestType_NONE);
    submit(ownStop.get());
}

/// Ends the thread, or at least has it end; true when it has. A lack of memory is waited out, as long as a stuck device
/// would be.
bool AVDeviceProxyThread::Impl::stop() noexcept {
    const Detail::ProxyTuning& tuning = Detail::proxyTuning();
    for (std::int64_t waited = 0; waited <= tuning.stuckCallMilliseconds;
         waited += tuning.sliceMilliseconds) {
        try {
            requestStop();
            return !isCurrentThread() && awaitUnlessStuck(end, *call);
        } catch (const Plugin::IOPluginException&) {
            return awaitUnlessStuck(end, *call); // rejected: an earlier stop request is on its way
        } catch (const std::bad_alloc&) {
            Utils::Threading::ThreadBase::sleep(tuning.sliceMilliseconds);
        } catch (...) {
            return false;
        }
    }
    return false;
}

/// Leaves a worker to its thread, which a device holds up or which is the caller itself. What the thread runs must
/// stay where it is, so the worker is kept until the thread has ended and somebody makes another one.
void AVDeviceProxyThread::Impl::retire(AVDeviceProxyThread* worker) noexcept {
    Utils::Platform::pinThisLibrary();
    const AutoLock hold(retiredLock.object);
    worker->impl->nextRetired = std::exchange(retired, worker);
    ++retiredCount;
}

void AVDeviceProxyThread::Impl::reapRetired() noexcept {
    AVDeviceProxyThread* ended = nullptr;
    {
        const AutoLock hold(retiredLock.object);
        AVDeviceProxyThread** link = &retired;
        while (AVDeviceProxyThread* const worker = *link) {
            if (worker->impl->finished && !worker->impl->isInherited()) {
                *link = worker->impl->nextRetired;
                worker->impl->nextRetired = std::exchange(ended, worker);
            } else {
                link = &worker->impl->nextRetired;
            }
        }
    }
    while (ended) {
        delete std::exchange(ended, ended->impl->nextRetired);
        --retiredCount;
    }
}

int Detail::retiredWorkers() noexcept { return retiredCount; }

} // namespace Zentara::IO
