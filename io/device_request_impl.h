#pragma once

#include <zentara/io/av_device_interface.h>
#include <zentara/io/device_request.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/utils/signal.h>
#include <zentara/utils/smart_ptr.h>

#include "utils/try_mutex.h"

#include <atomic>
#include <mutex>
#include <optional>

namespace Zentara::IO {

struct deviceRequest::Impl {
    Impl(AVDeviceInterface* requestDevice, RequestType requestType)
        : type(requestType), device(requestDevice) {}

    /// What caller and worker meet by.
    struct Meeting {
        Utils::Threading::Signal startOfIO;
        Utils::Threading::Signal acknowledged;
        Utils::Threading::TryMutex lock;
    };

    /// The caller hands the request to the worker; false when it is there already, or was given up. A signal left set
    /// would shorten the wait that is about to begin.
    bool enterQueue() noexcept {
        if (forsaken || !advance(Stage::IDLE, Stage::QUEUED))
            return false;
        meeting->startOfIO.isSet();
        meeting->acknowledged.isSet();
        return true;
    }

    /// The worker takes the request up, unless its caller has withdrawn it.
    bool begin() noexcept { return advance(Stage::QUEUED, Stage::STARTED); }

    /// The worker is done with it and will not touch anything of it again, save what it acknowledges by.
    void finish() noexcept { stage = Stage::DONE; }

    [[nodiscard]] bool isDone() const noexcept { return stage == Stage::DONE; }

    /// The caller gives up, unless the worker has taken the request up: from then on it runs.
    bool withdraw() noexcept { return advance(Stage::QUEUED, Stage::WITHDRAWN); }

    /// The caller has met the acknowledgement, or the worker did not take the request: it may be submitted anew.
    void comeBack() noexcept { stage = Stage::IDLE; }

    /// The caller leaves, with a failure, and its reference stays behind. The library's own requests are then left for
    /// good; another caller's are as long as the worker has not refused them.
    void forsake() noexcept { forsaken = forsaken || isOurs || stage != Stage::IDLE; }

    /// True when nobody will come for the request by the reference that its caller left behind.
    [[nodiscard]] bool isOver() const noexcept {
        if (!forsaken)
            return false;
        const Stage present = stage;
        return present == Stage::IDLE || present == Stage::DONE;
    }

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
        std::unique_lock hold(meeting->lock, std::defer_lock);
        while (!hold.try_lock()) {
            if (giveUp())
                return false;
        }
        return cancel();
    }

    // What follows up to the meeting is handed over by the signals: written by one side while the other waits.
    const RequestType type;
    bool failed = false;
    bool isOurs = false; ///< made by the library, which never uses a reference that it left behind
    ProxyFailure failure;
    std::optional<Meeting> meeting{std::in_place}; ///< a husk of the library's own has none
    Utils::SmartPtr<AVDeviceInterface> device;     ///< a husk has none
    std::atomic<bool> ioPending{false};            ///< the device says so: a cancel would reach something
    std::atomic<bool> cancelled{false};            ///< the caller has given up

private:
    enum class Stage { IDLE, QUEUED, STARTED, WITHDRAWN, DONE };

    bool advance(Stage from, Stage to) noexcept { return stage.compare_exchange_strong(from, to); }

    std::atomic<Stage> stage{Stage::IDLE}; ///< see deviceRequest
    std::atomic<bool> forsaken{false};     ///< the caller has left his reference behind; never false again
};

} // namespace Zentara::IO
