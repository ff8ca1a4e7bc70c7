#pragma once

#include <zentara/io/device_request.h>

namespace Zentara::Devices {

/// Marks a request as pending for as long as it lives, so that a caller who gives up has it cancelled.
class PendingRequest {
public:
    /// \param pending may be null
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

    IO::deviceRequest* const request;
};

} // namespace Zentara::Devices
