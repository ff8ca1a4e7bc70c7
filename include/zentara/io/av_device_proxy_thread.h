#pragma once

#include <cstdint>
#include <memory>

#include <zentara/export.h>
#include <zentara/utils/atomic_int.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/runnable.h>

namespace Zentara::IO {

class deviceRequest;

/// The one thread, named "AVDeviceProxyThread", on which all proxified devices are called, one request at a
/// time and in the order of submission. Back-ends need not be safe for it, and a platform service that
/// wants its calls from one prepared thread gets them so.
///
///           first instance()            last release()             the thread has ended
///     None ------------------> Running ----------------> Stopping --------------------> None
///                                                           |
///                                                           |  a device call holds the thread for 10 s, or it is the
///                                                           |  thread itself that gives back the last reference
///                                                           +--> left to its thread, and gone once that has ended
///                                                                and another worker is made
///
/// Stopping, it rejects what is submitted and fails what is queued. The next instance() may make another worker beside
/// one that is left.
///
/// One per process, counted: each `instance` is paired with one `release`, the last of which stops the
/// thread. To a child of fork the thread does not come along: there the worker rejects what it is asked, and its last
/// `release` leaves it as it is. `instance`, `release` and `processRequest` are safe; who calls `processRequest` holds
/// a reference.
class ZENTARA_API AVDeviceProxyThread final : public Utils::Threading::Runnable {
public:
    AVDeviceProxyThread(const AVDeviceProxyThread&) = delete;
    AVDeviceProxyThread& operator=(const AVDeviceProxyThread&) = delete;

    /// The worker, with its count raised; the first call starts it.
    [[nodiscard]] static AVDeviceProxyThread* instance();

    /// Gives back one `instance`. The last one fails the requests that are still queued and waits until the
    /// thread has ended, but never for more than a device call of 10 s: a thread that is held longer is left
    /// to itself, and so is one that gives back its own last reference. Throws nothing.
    void release();

    /// Has the request executed and waits for it. The waiting is bounded: by the timeout once the request has
    /// started, and before that, or after an accepted cancel, by 10 s of one and the same device call. A long
    /// queue is no reason to give up.
    ///
    /// The caller's reference is needed on success only: after an exception the worker may still come to the
    /// request, so the caller must leave its reference with it for good. By that reference a husk stays, on which
    /// `type`, `failed` and `getFailure` answer; the device, and the memory of the library's own requests, go as soon
    /// as the worker is done with the request and nobody else holds it. A request that was executed may be submitted
    /// again if it did not fail.
    /// \param timeoutMilliseconds runs from the request's start
    /// \throws Zentara::Plugin::PluginException the subclass and message that the device failed with
    /// \throws Zentara::Plugin::TimeoutPluginException "processRequest: I/O timeout: TYPE" when the wait ended first;
    ///         the device was asked to cancel
    /// \throws Zentara::Plugin::IOPluginException "TYPE: I/O request rejected" when the worker is stopping
    /// \throws Zentara::Plugin::InvalidOperationPluginException on the worker's own thread, which would wait for
    /// itself; in a child of fork; and for a request that is being executed, or has failed or timed out before
    void processRequest(deviceRequest* request, std::uint32_t timeoutMilliseconds);

private:
    struct Impl;

    AVDeviceProxyThread();
    ~AVDeviceProxyThread() override;

    void* run(void* argument) override;

    /// Has the thread stop and waits until it has seen the request to. A second call is rejected.
    void exit() override;

    void executeRequest(deviceRequest* request);

    /// Not cleared when the worker goes; only a count above 0 makes it valid.
    static AVDeviceProxyThread* m_instance;
    static Utils::Threading::Mutex& m_lock;
    static Utils::AtomicInt m_refcount;

    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::IO
