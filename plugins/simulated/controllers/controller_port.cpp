#include "plugins/simulated/controllers/controller_port.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

namespace Zentara::Simulated {

using Utils::Format;
using Utils::Threading::AutoLock;

namespace {

constexpr std::size_t logLimit = 100000;

std::optional<TransferFaultKind> faultKindFromName(const std::string& name) {
    const std::pair<const char*, TransferFaultKind> names[] = {
        {"fail", TransferFaultKind::Fail},       {"late", TransferFaultKind::Late},
        {"short", TransferFaultKind::Short},     {"long", TransferFaultKind::Long},
        {"corrupt", TransferFaultKind::Corrupt}, {"hang", TransferFaultKind::Hang}};
    for (const auto& [text, kind] : names) {
        if (name == text)
            return kind;
    }
    return std::nullopt;
}

template<typename Number>
bool parseNumber(const std::string& text, Number& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size();
}

void corrupt(Bytes& bytes) {
    for (std::size_t i = 1; i < bytes.size(); ++i)
        bytes[i] ^= 0xFF;
}

Transfer makeTransfer(bool isGet, std::uint32_t unit, std::uint32_t control, const void* data,
                      std::size_t length) {
    const auto* first = static_cast<const std::uint8_t*>(data);
    Transfer transfer;
    transfer.isGet = isGet;
    transfer.unit = unit;
    transfer.control = control;
    transfer.sent.assign(first, first + (data ? length : 0));
    return transfer;
}

std::string lengthText(const Transfer& transfer, std::size_t count) {
    return Format(transfer.isGet ? "control % of unit %: % bytes came back, % were asked"
                                 : "control % of unit %: % bytes were taken of %") %
           transfer.control % transfer.unit % static_cast<unsigned>(count) %
           static_cast<unsigned>(transfer.sent.size());
}

} // namespace

TransferFault parseTransferFault(const std::string& transfer, const std::string& kind,
                                 const std::string& hangMillis) {
    TransferFault fault;
    if (!parseNumber(transfer, fault.transfer) || fault.transfer == 0)
        throw Plugin::ArgumentPluginException(Format("'%' numbers no transfer; the first is 1") % transfer);
    const auto known = faultKindFromName(kind);
    if (!known) {
        throw Plugin::ArgumentPluginException(
            Format("unknown transfer fault '%'; known: fail late short long corrupt hang") % kind);
    }
    fault.kind = *known;
    if (!hangMillis.empty() && !parseNumber(hangMillis, fault.hangMillis))
        throw Plugin::ArgumentPluginException(Format("'%' is no number of milliseconds") % hangMillis);
    return fault;
}

ControllerPort::ControllerPort(std::unique_ptr<ControllerModel> model) : controller(std::move(model)) {}

ControllerPort::~ControllerPort() = default;

void ControllerPort::select(const ::GUID& guid) {
    const AutoLock lock(mutex);
    if (!guidEquals(guid, controller->guid())) {
        throw Plugin::NotSupportedPluginException(Format("a camera with % has no such extension unit") %
                                                  chipName(controller->kind()));
    }
    selected = true;
}

void ControllerPort::set(std::uint32_t unit, std::uint32_t control, const void* data, std::size_t length) {
    Transfer transfer = makeTransfer(false, unit, control, data, length);
    run(transfer);
}

void ControllerPort::get(std::uint32_t unit, std::uint32_t control, void* data, std::size_t length) {
    Transfer transfer = makeTransfer(true, unit, control, data, length);
    run(transfer);
    std::copy(transfer.reply.begin(), transfer.reply.end(), static_cast<std::uint8_t*>(data));
}

int ControllerPort::length(std::uint32_t unit, std::uint32_t control) {
    const AutoLock lock(mutex);
    const auto bytes = unit == controller->unit() ? controller->length(control) : std::nullopt;
    if (!bytes)
        throw Plugin::IOPluginException(Format("no control % on unit %") % control % unit);
    return static_cast<int>(*bytes);
}

bool ControllerPort::cancel() {
    const AutoLock lock(mutex);
    if (hanging)
        cancelled.set();
    return hanging;
}

void ControllerPort::addFault(const TransferFault& fault) {
    const AutoLock lock(mutex);
    faults.push_back(fault);
}

void ControllerPort::clearFaults() {
    const AutoLock lock(mutex);
    faults.clear();
    count = 0;
}

std::vector<Transfer> ControllerPort::log() const {
    const AutoLock lock(mutex);
    return transfers;
}

void ControllerPort::clearLog() {
    const AutoLock lock(mutex);
    transfers.clear();
}

std::uint16_t ControllerPort::tofRegister(std::uint8_t address) const {
    const AutoLock lock(mutex);
    const RegisterFile* registers = controller->tofRegisters();
    return registers ? static_cast<std::uint16_t>(registers->peek(address)) : std::uint16_t{0};
}

void ControllerPort::setTofRegister(std::uint8_t address, std::uint16_t value) {
    const AutoLock lock(mutex);
    if (RegisterFile* registers = controller->tofRegisters())
        registers->change(address, value);
}

void ControllerPort::setObserver(std::function<void(const Transfer&)> observer) {
    const AutoLock lock(mutex);
    observe = std::move(observer);
}

const TransferFault* ControllerPort::dueFault() {
    const auto transfer = ++count;
    const auto due = std::find_if(faults.begin(), faults.end(), [transfer](const TransferFault& fault) {
        return fault.transfer == transfer;
    });
    return due == faults.end() ? nullptr : &*due;
}

void ControllerPort::checkControl(std::uint32_t unit, std::uint32_t control, std::size_t length) {
    if (!selected)
        throw Plugin::IOPluginException("no extension unit was selected");
    const auto bytes = unit == controller->unit() ? controller->length(control) : std::nullopt;
    if (!bytes)
        throw Plugin::IOPluginException(Format("no control % on unit %") % control % unit);
    if (*bytes != length) {
        throw Plugin::IOPluginException(Format("control % of unit % has % bytes, not %") % control % unit %
                                        static_cast<unsigned>(*bytes) % static_cast<unsigned>(length));
    }
}

void ControllerPort::perform(Transfer& transfer) {
    if (transfer.isGet) {
        transfer.reply = controller->get(transfer.control, transfer.sent);
    } else {
        controller->set(transfer.control, transfer.sent);
    }
}

void ControllerPort::record(Transfer transfer) {
    if (observe)
        observe(transfer);
    if (transfers.size() == logLimit)
        transfers.erase(transfers.begin(), transfers.begin() + logLimit / 2);
    transfers.push_back(std::move(transfer));
}

void ControllerPort::hang(unsigned long milliseconds) {
    {
        const AutoLock lock(mutex);
        static_cast<void>(cancelled.timedWait(0)); // the last hang may have been cancelled twice
        hanging = true;
    }
    const bool wasCancelled = cancelled.timedWait(milliseconds) == 0;
    const AutoLock lock(mutex);
    hanging = false;
    throw Plugin::TimeoutPluginException(wasCancelled ? "the transfer was cancelled"
                                                      : "the camera did not answer");
}

// The lock is given up while a transfer hangs, so that the hang can be cancelled.
void ControllerPort::run(Transfer& transfer) {
    try {
        std::optional<TransferFault> fault;
        {
            const AutoLock lock(mutex);
            checkControl(transfer.unit, transfer.control, transfer.sent.size());
            if (const TransferFault* due = dueFault())
                fault = *due;
            if (!fault) {
                perform(transfer);
                return record(transfer);
            }
        }
        runFaulty(transfer, *fault);
        const AutoLock lock(mutex);
        record(transfer);
    } catch (const Plugin::PluginException& failure) {
        const AutoLock lock(mutex);
        transfer.reply.clear();
        transfer.failure = failure.what();
        record(transfer);
        throw;
    }
}

void ControllerPort::runFaulty(Transfer& transfer, const TransferFault& fault) {
    if (fault.kind == TransferFaultKind::Hang)
        return hang(fault.hangMillis);
    const AutoLock lock(mutex);
    switch (fault.kind) {
    case TransferFaultKind::Late:
        perform(transfer);
        throw Plugin::TimeoutPluginException("the answer came too late");
    case TransferFaultKind::Short:
        throw Plugin::IOPluginException(lengthText(transfer, transfer.sent.size() - 1));
    case TransferFaultKind::Long:
        throw Plugin::IOPluginException(lengthText(transfer, transfer.sent.size() + 1));
    case TransferFaultKind::Corrupt:
        if (!transfer.isGet)
            corrupt(transfer.sent);
        perform(transfer);
        if (transfer.isGet)
            corrupt(transfer.reply);
        return;
    default:
        throw Plugin::IOPluginException("the transfer failed");
    }
}

} // namespace Zentara::Simulated
