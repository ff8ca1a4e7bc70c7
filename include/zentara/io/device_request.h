#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <zentara/export.h>
#include <zentara/io/proxy_failure.h>
#include <zentara/io/request_type.h>
#include <zentara/utils/refcounted.h>

namespace Zentara::IO {

class AVDeviceInterface;
struct RequestHusk;

/// One call on a device as an object: the operation, its arguments, places for its results (in the
/// subclasses), the failure if it fails, and the signals between the caller and the worker thread that
/// executes it. A device always receives its arguments in this form, also when it is called directly.
///
/// Created with one reference, which its creator drops, or leaves behind if the worker fails the request. It holds a
/// reference on its device, and with it the device's plug-in, as long as it lives; one that was left behind gives that
/// and all else that it holds back once the worker is done with it and nobody else has a reference, and then answers
/// only for its type and its failure: `device` is null.
/// Between a caller and the worker a request has these states. Each step is one atomic change, so that exactly one of the
/// two wins where the worker takes a request up at the moment when its caller gives up:
///
///             processRequest            the worker takes it up              the device is done
///     Idle -------------------> Queued -----------------------> Started ----------------------> Done
///      ^                          |                                                              |
///      |                          |  nobody comes: one device call has held the worker for 10 s  |
///      |                          +--> Withdrawn: acknowledged, never executed                   |
///      |                                                                                         |
///      +------------------- the caller has met the end, and it did not fail ---------------------+
///
/// A caller that leaves while it is Started takes nothing with it: the request runs on to Done. One that got an exception
/// may submit the request again only where it never came into the queue.
///
/// The signals, `cancelIO`, `lock`, `unlock` and the pending and cancelled flags are safe; the rest is handed
/// from caller to worker and back by the signals.
class ZENTARA_API deviceRequest : public Utils::Refcounted {
public:
    /// \param device may be null, for a stop request
    deviceRequest(AVDeviceInterface* device, RequestType type);
    deviceRequest(const deviceRequest&) = delete;
    deviceRequest& operator=(const deviceRequest&) = delete;

    [[nodiscard]] RequestType type() const;
    /// The request keeps its reference. Null for a stop request, and when the request has been given up.
    [[nodiscard]] AVDeviceInterface* device() const;

    /// Says that the request has been taken up; what a caller's time runs from.
    void ackStartOfIO();

    /// Says that the request is done, whatever its outcome.
    void ack();

    /// Waits for the start without limit, then for the end.
    /// \param timeoutMilliseconds runs from the start
    /// \return 0 when the request is done, -1 when the time has passed
    std::int32_t waitAck(std::uint32_t timeoutMilliseconds);

    /// Waits for the end without limit, whether it has started or not.
    void waitAck();

    /// A device says so while it has a transfer in flight that its `cancelIO` can cancel. It sets this flag
    /// and looks at the cancelled one between `lock` and `unlock`, held briefly: a caller that gives up takes
    /// the same lock.
    void setIOPending(bool pending);
    [[nodiscard]] bool getIOPending() const;

    void setCancelled(bool cancelled);
    [[nodiscard]] bool getCancelled() const;

    /// Marks the request cancelled and, if a transfer is pending, asks the device to cancel it, all under the
    /// request's lock.
    /// \return the device's answer; false when nothing was pending
    bool cancelIO();
    /// The lock under which a device and who gives up agree on the two flags.
    void lock();
    void unlock();

    /// Marks the request failed. A device may do so instead of throwing; if it does both, what was thrown
    /// wins.
    void setFailure(Zentara::Plugin::PluginExceptionType type, const std::string& message);
    [[nodiscard]] bool failed() const;
    [[nodiscard]] ProxyFailure getFailure();

    /// Drops a reference; at 0 the request is deleted.
    void decref() override;

protected:
    ~deviceRequest() override;

private:
    friend class AVDeviceProxyThread;
    friend struct RequestHusk;
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::IO
