#pragma once

#include <zentara/io/av_device_interface.h>
#include <zentara/io/device_request.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/signal.h>
#include <zentara/utils/smart_ptr.h>

#include <atomic>

namespace Zentara::IO {

struct deviceRequest::Impl {
    Impl(AVDeviceInterface* requestDevice, RequestType requestType)
        : type(requestType), device(requestDevice) {}

    /// The worker takes the request up, unless its caller has withdrawn it.
    bool begin() noexcept { return leaveQueue(Stage::STARTED); }

    /// The caller gives up, unless the worker has taken the request up: from then on it runs.
    bool withdraw() noexcept { return leaveQueue(Stage::WITHDRAWN); }

    /// The caller has met the worker's acknowledgement, so the request is its own again and may be submitted anew.
    void comeBack() noexcept { stage = Stage::QUEUED; }

    const RequestType type;
    bool failed = false;
    ProxyFailure failure;
    Utils::Threading::Signal startOfIO;
    Utils::Threading::Signal acknowledged;
    const Utils::SmartPtr<AVDeviceInterface> device;
    Utils::Threading::Mutex lock;
    std::atomic<bool> ioPending{false};
    std::atomic<bool> cancelled{false};

private:
    enum class Stage { QUEUED, STARTED, WITHDRAWN };

    bool leaveQueue(Stage next) noexcept {
        Stage expected = Stage::QUEUED;
        return stage.compare_exchange_strong(expected, next);
    }

    std::atomic<Stage> stage{Stage::QUEUED};
};

} // namespace Zentara::IO
