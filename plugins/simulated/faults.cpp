#include "plugins/simulated/faults.h"

#include <stdexcept>
#include <string>

#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

#include "plugins/simulated/pending_request.h"

namespace Zentara::Simulated {
namespace {

using Utils::Threading::AutoLock;

std::string messageOf(const Fault& fault) {
    if (!fault.message.empty())
        return fault.message;
    return Utils::Format("%: simulated fault") % operationName(fault.at);
}

} // namespace

Faults::Faults(const Settings& settings, Device device) : kind(device) { rearm(settings); }

void Faults::rearm(const Settings& settings) {
    AutoLock hold(lock);
    refuseCancel = settings.refuseCancel;
    armed.clear();
    for (const Fault& fault : settings.faults) {
        if (fault.device == Device::Any || fault.device == kind)
            armed.push_back({fault, 0});
    }
}

bool Faults::refusesCancel() {
    AutoLock hold(lock);
    return refuseCancel;
}

void Faults::meet(Operation operation, IO::deviceRequest* request) {
    Fault fault;
    if (!due(operation, fault))
        return;
    switch (fault.kind) {
    case Fault::Kind::Throw:
        Plugin::throwPluginException(fault.exception, messageOf(fault));
        return;
    case Fault::Kind::Foreign:
        throw std::runtime_error(messageOf(fault));
    case Fault::Kind::Hang:
        hang(fault, request);
        return;
    }
}

bool Faults::cancel() {
    AutoLock hold(lock);
    if (hanging == 0)
        return false;
    ++cancels;
    wake.set();
    return true;
}

/// The first fault of the operation whose turn it is; every one of them counts the call.
bool Faults::due(Operation operation, Fault& fault) {
    AutoLock hold(lock);
    bool found = false;
    for (Armed& candidate : armed) {
        if (candidate.fault.at != operation)
            continue;
        const std::uint64_t call = candidate.calls++;
        if (found || call < candidate.fault.after || call - candidate.fault.after >= candidate.fault.times)
            continue;
        fault = candidate.fault;
        found = true;
    }
    return found;
}

void Faults::hang(const Fault& fault, IO::deviceRequest* request) {
    const PendingRequest pending(request);
    if (pending.alreadyCancelled() || !waitHanging(fault.milliseconds))
        throw Plugin::IOPluginException(Utils::Format("%: cancelled") % operationName(fault.at));
}

/// False when a cancel came before the time was over.
bool Faults::waitHanging(std::uint32_t milliseconds) {
    const std::int64_t end = Utils::Clock::nowMicros() + std::int64_t{milliseconds} * 1000;
    std::uint32_t before = 0;
    {
        AutoLock hold(lock);
        ++hanging;
        before = cancels;
    }
    for (;;) {
        const std::int64_t left = end - Utils::Clock::nowMicros();
        if (left > 0)
            wake.timedWait(static_cast<unsigned long>((left + 999) / 1000));
        AutoLock hold(lock);
        const bool cancelled = cancels != before;
        if (!cancelled && left > 0)
            continue; // woken by a set() that was meant for an earlier hang
        if (--hanging != 0)
            wake.set(); // one set() wakes one waiter: pass it on
        return !cancelled;
    }
}

} // namespace Zentara::Simulated
