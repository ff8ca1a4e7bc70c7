#pragma once

#include <zentara/io/device_request.h>

namespace Zentara::Linux {

/// Marks a request as pending, so that a caller who gives up has it cancelled, for as long as it lives.
class PendingRequest {
public:
    /// \param pending may be null
    explicit PendingRequest(IO::deviceRequest* pending) : request(pending) { mark(true); }
    ~PendingRequest() { mark(false); }
    PendingRequest(const PendingRequest&) = delete;
    PendingRequest& operator=(const PendingRequest&) = delete;

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

} // namespace Zentara::Linux
