#include "plugins/simulated/faults.h"

#include <stdexcept>
#include <string>

#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

#include "plugins/devices/pending_request.h"

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
    clear();
    for (const Fault& fault : settings.faults) {
        if (fault.device == Device::Any || fault.device == kind)
            add(fault);
    }
    AutoLock hold(lock);
    refuseCancel = settings.refuseCancel;
}

void Faults::add(const Fault& fault) {
    AutoLock hold(lock);
    armed.push_back(fault);
}

void Faults::clear() {
    AutoLock hold(lock);
    armed.clear();
    calls.fill(0);
}

bool Faults::refusesCancel() {
    AutoLock hold(lock);
    return refuseCancel;
}

void Faults::meet(Operation operation, IO::deviceRequest* request) {
    const std::optional<Fault> fault = due(operation);
    if (!fault)
        return;
    if (fault->kind != Fault::Kind::Hang)
        raise(*fault);
    const Devices::PendingRequest pending(request);
    if (pending.alreadyCancelled() || !hang(fault->milliseconds))
        throw Plugin::IOPluginException(Utils::Format("%: cancelled") % operationName(operation));
}

void Faults::raise(const Fault& fault) {
    if (fault.kind == Fault::Kind::Throw)
        Plugin::throwPluginException(fault.exception, messageOf(fault));
    throw std::runtime_error(messageOf(fault));
}

bool Faults::cancel() {
    AutoLock hold(lock);
    if (hanging == 0)
        return false;
    ++cancels;
    wake.set();
    return true;
}

/// The first one whose turn it is.
std::optional<Fault> Faults::due(Operation operation) {
    AutoLock hold(lock);
    const std::uint64_t call = calls[static_cast<std::size_t>(operation)]++;
    for (const Fault& fault : armed) {
        if (fault.at == operation && call >= fault.after && call - fault.after < fault.times)
            return fault;
    }
    return std::nullopt;
}

bool Faults::hang(std::uint32_t milliseconds) {
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
