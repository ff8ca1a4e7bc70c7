#pragma once

#include <cstdint>
#include <utility>

#include <zentara/io/av_device_proxy.h>
#include <zentara/io/av_device_proxy_thread.h>
#include <zentara/io/thread_requests.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/utils/format.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/smart_ptr.h>
#include <zentara/utils/thread_base.h>

#include "io/plugin_handle.h"
#include "io/proxy_tuning.h"
#include "io/queued_request.h"
#include "io/warning.h"
#include "utils/platform/thread.h"

namespace Zentara::IO {

/// Drops the caller's reference once it is the last one, looking every 50 ms. Who keeps the request for longer than
/// a stuck device call is waited for keeps it for good, and the caller's reference with it.
/// \throws Plugin::TimeoutPluginException "TYPE: the request is still in use" then
inline void dropWhenLast(deviceRequest& request) {
    constexpr unsigned long step = 50;
    const RequestType type = request.type();
    for (unsigned long waited = 0; !request.decrefIfLastRef(); waited += step) {
        if (waited >= Detail::proxyTuning().stuckCallMilliseconds) {
            RequestHusk::forsake(request);
            throw Plugin::TimeoutPluginException(Utils::Format("%: the request is still in use") %
                                                 RequestType_toString(type));
        }
        Utils::Threading::ThreadBase::sleep(step);
    }
}

/// What a proxy keeps: the device that it stands for, and the two ways of calling it.
template<typename Device>
class DeviceLink {
public:
    explicit DeviceLink(GUID guid)
        : handle(guid, Device::getImplType()), linked(dynamic_cast<Device*>(handle.get())) {
        if (!linked)
            PluginHandle::throwNotInstantiated(guid);
    }

    /// Serialises direct calls.
    Utils::Threading::Mutex mutex;

    /// \throws Plugin::InvalidOperationPluginException once the proxy has been disposed of
    [[nodiscard]] Device& device() const {
        if (!linked)
            throw Plugin::InvalidOperationPluginException("the device proxy has been disposed of");
        return *linked;
    }

    /// Calls the device on this thread. What it throws may outlive it.
    template<typename Operation, typename... Arguments>
    decltype(auto) ask(Operation operation, Arguments... arguments) const {
        return Plugin::callPlugin([&]() -> decltype(auto) { return (device().*operation)(arguments...); });
    }

    /// Has the device execute a `Request`, or on the worker a `Queued`, made from the arguments.
    template<typename Request, typename Queued = Request, typename Operation, typename... Arguments>
    void call(const AVDeviceProxy& proxy, Operation operation, Arguments&&... arguments) {
        if (proxy.isProxified())
            callOnWorker<Queued>(worker(proxy), &device(), std::forward<Arguments>(arguments)...);
        else
            callDirectly<Request>(operation, std::forward<Arguments>(arguments)...);
    }

    /// The device's first call: it prepares the thread on which the others will follow.
    void initializeThread(const AVDeviceProxy& proxy) {
        if (proxy.isProxified())
            callOnWorker<threadInitializeRequest>(worker(proxy), &device());
        else
            ask(&Device::threadInitialize);
    }

    /// The device's last call, which takes that back. A failure is only logged, for disposal goes on.
    void uninitializeThread(AVDeviceProxy& proxy, const char* warning) noexcept {
        if (!linked)
            return;
        try {
            if (isElsewhere(proxy))
                warn(warning);
            else if (proxy.isProxified())
                uninitializeThreadOnWorker(proxy);
            else
                proxy.threadUninitialize();
        } catch (...) {
            warn(warning);
        }
    }

    /// Disposes of the device and lets go of it.
    void release(const AVDeviceProxy& proxy) noexcept {
        Device* const last = std::exchange(linked, nullptr);
        if (!last)
            return;
        if (isElsewhere(proxy)) {
            handle.abandon();
            return;
        }
        try {
            last->dispose();
        } catch (...) {
            warn("dispose operation failed");
        }
        handle.release();
    }

private:
    /// True in a child of fork, to which the thread of a proxified device has not come along, and the locks that it may
    /// hold as it held them. The device is left to the parent.
    [[nodiscard]] bool isElsewhere(const AVDeviceProxy& proxy) const noexcept {
        return proxy.isProxified() && process != Utils::Platform::currentProcessId();
    }

    /// Ends only when the worker has let go of the request, so that the device is not the worker's to destroy.
    void uninitializeThreadOnWorker(const AVDeviceProxy& proxy) {
        auto* const request = createQueuedRequest<threadUninitializeRequest>(&device());
        worker(proxy).processRequest(request, Detail::proxyTuning().timeoutMilliseconds);
        dropWhenLast(*request);
    }

    static AVDeviceProxyThread& worker(const AVDeviceProxy& proxy) {
        if (!proxy.getProxy())
            throw Plugin::InvalidOperationPluginException("the device proxy has been disposed of");
        return *proxy.getProxy();
    }

    template<typename Queued, typename... Arguments>
    static void callOnWorker(AVDeviceProxyThread& worker, Device* device, Arguments&&... arguments) {
        auto* const request = createQueuedRequest<Queued>(device, std::forward<Arguments>(arguments)...);
        worker.processRequest(request, Detail::proxyTuning().timeoutMilliseconds);
        const auto done = Utils::SmartPtr<Queued>::adopt(request);
        if constexpr (requires { done->deliver(); })
            done->deliver();
    }

    template<typename Request, typename Operation, typename... Arguments>
    void callDirectly(Operation operation, Arguments&&... arguments) {
        const Utils::Threading::AutoLock hold(mutex);
        const auto request = Utils::makeRefcounted<Request>(&device(), std::forward<Arguments>(arguments)...);
        ask(operation, request.get());
        if (request->failed()) {
            const ProxyFailure failure = request->getFailure();
            AVDeviceProxy::PluginException_throw(failure.type, failure.message);
        }
    }

    const unsigned long process = Utils::Platform::currentProcessId(); ///< that made the device
    PluginHandle handle;
    Device* linked; ///< the handle's object; null once it was let go
};

} // namespace Zentara::IO
