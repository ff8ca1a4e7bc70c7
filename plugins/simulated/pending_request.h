#pragma once

#include <zentara/io/device_request.h>

namespace Zentara::Simulated {

/// Marks the request as pending for as long as it lives.
class PendingRequest {
public:
    explicit PendingRequest(IO::deviceRequest* pending) : request(pending) { mark(true); }
    ~PendingRequest() { mark(false); }
    PendingRequest(const PendingRequest&) = delete;
    PendingRequest& operator=(const PendingRequest&) = delete;

    /// The caller gave up before the request was marked: nobody will cancel it any more.
    [[nodiscard]] bool alreadyCancelled() const { return request != nullptr && request->getCancelled(); }

private:
    void mark(bool pending) {
        if (request == nullptr)
            return;
        request->lock();
        request->setIOPending(pending);
        request->unlock();
    }

    IO::deviceRequest* request;
};

} // namespace Zentara::Simulated
