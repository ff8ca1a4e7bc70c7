#include <zentara/io/device_request.h>

#include "io/device_request_impl.h"
#include "io/request_husk.h"

namespace Zentara::IO {

deviceRequest::deviceRequest(AVDeviceInterface* device, RequestType type)
    : impl(std::make_unique<Impl>(device, type)) {}

deviceRequest::~deviceRequest() = default;

void deviceRequest::decref() {
    // One other reference is left. Where that is the one of a caller who got an exception, and never gives it back, what
    // the request holds must go now, or it never would.
    if (decrefUnlessSecondLast())
        return;
    if (impl->isOver())
        RequestHusk::make(*this);
    Refcounted::decref();
}

RequestType deviceRequest::type() const { return impl->type; }

AVDeviceInterface* deviceRequest::device() const { return impl->device.get(); }

void deviceRequest::ackStartOfIO() { impl->meeting->startOfIO.set(); }

void deviceRequest::ack() { impl->meeting->acknowledged.set(); }

std::int32_t deviceRequest::waitAck(std::uint32_t timeoutMilliseconds) {
    impl->meeting->startOfIO.wait();
    return impl->meeting->acknowledged.timedWait(timeoutMilliseconds);
}

void deviceRequest::waitAck() { impl->meeting->acknowledged.wait(); }

void deviceRequest::setIOPending(bool pending) { impl->ioPending = pending; }

bool deviceRequest::getIOPending() const { return impl->ioPending; }

void deviceRequest::setCancelled(bool cancelled) { impl->cancelled = cancelled; }

bool deviceRequest::getCancelled() const { return impl->cancelled; }

bool deviceRequest::cancelIO() {
    const std::lock_guard hold(impl->meeting->lock);
    return impl->cancel();
}

void deviceRequest::lock() { impl->meeting->lock.lock(); }

void deviceRequest::unlock() { impl->meeting->lock.unlock(); }

void deviceRequest::setFailure(Plugin::PluginExceptionType type, const std::string& message) {
    impl->failed = true;
    impl->failure.type = type;
    impl->failure.message = message;
}

bool deviceRequest::failed() const { return impl->failed; }

ProxyFailure deviceRequest::getFailure() { return impl->failure; }

} // namespace Zentara::IO
