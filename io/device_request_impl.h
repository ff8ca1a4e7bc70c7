#pragma once

#include <zentara/io/av_device_interface.h>
#include <zentara/io/device_request.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/utils/signal.h>
#include <zentara/utils/smart_ptr.h>

#include <atomic>
#include <mutex>

namespace Zentara::IO {

struct deviceRequest::Impl {
    Impl(AVDeviceInterface* requestDevice, RequestType requestType)
        : type(requestType), device(requestDevice) {}

    /// The worker takes the request up, unless its caller has withdrawn it.
    bool begin() noexcept { return leaveQueue(Stage::STARTED); }

    /// The caller gives up, unless the worker has taken the request up: from then on it runs.
    bool withdraw() noexcept { return leaveQueue(Stage::WITHDRAWN); }

    /// What cancelIO() does. The caller holds the lock.
    bool cancel() {
        // Also a request without a pending transfer ends cancelled.
        cancelled = true;
        return ioPending && device && Plugin::callPlugin([this] { return device->cancelIO(); });
    }

    /// cancelIO() for a caller that must get away: the lock may be with a device that does not give it back.
    /// \param giveUp looks whether to go on trying; it waits a little
    template<typename GiveUp>
    bool cancelUnless(GiveUp giveUp) {
        cancelled = true;
        std::unique_lock<std::recursive_mutex> hold(lock, std::defer_lock);
        while (!hold.try_lock()) {
            if (giveUp())
                return false;
        }
        return cancel();
    }

    /// The caller has met the worker's acknowledgement, so the request is its own again and may be submitted anew.
    void comeBack() noexcept { stage = Stage::QUEUED; }

    const RequestType type;
    bool failed = false;
    ProxyFailure failure;
    Utils::Threading::Signal startOfIO;
    Utils::Threading::Signal acknowledged;
    const Utils::SmartPtr<AVDeviceInterface> device;
    std::recursive_mutex lock; ///< one that can be tried
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
