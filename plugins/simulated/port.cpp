#include "plugins/simulated/port.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <utility>

#include <zentara/io/extension_unit_query.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

#include "plugins/descriptions/wire.h"
#include "plugins/simulated/sensors.h"

namespace Zentara::Simulated {

using Utils::Format;
using Utils::Threading::AutoLock;

namespace {

constexpr std::size_t logLimit = 100000;
constexpr std::int64_t quietMicros = 2000;

/// All but the first byte, so that the packet is taken for what it was.
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

[[noreturn]] void refuseLength(const Transfer& transfer, std::size_t count) {
    throw Plugin::IOPluginException(Format(transfer.isGet
                                               ? "control % of unit %: % bytes came back, % were asked"
                                               : "control % of unit %: % bytes were taken of %") %
                                    transfer.control % transfer.unit % static_cast<unsigned>(count) %
                                    static_cast<unsigned>(transfer.sent.size()));
}

} // namespace

Port::Port(std::unique_ptr<Firmware> inside, std::shared_ptr<Faults> shared)
    : firmware(std::move(inside)), faults(shared ? std::move(shared) : std::make_shared<Faults>()) {}

Port::~Port() = default;

void Port::select(const ::GUID& guid) {
    const AutoLock lock(mutex);
    if (!guidEquals(guid, firmware->guid())) {
        throw Plugin::NotSupportedPluginException(Format("a camera with % has no such extension unit") %
                                                  firmware->name());
    }
    selected = true;
}

void Port::set(std::uint32_t unit, std::uint32_t control, const void* data, std::size_t length) {
    Transfer transfer = makeTransfer(false, unit, control, data, length);
    run(transfer);
}

void Port::get(std::uint32_t unit, std::uint32_t control, void* data, std::size_t length) {
    Transfer transfer = makeTransfer(true, unit, control, data, length);
    run(transfer);
    std::copy(transfer.reply.begin(), transfer.reply.end(), static_cast<std::uint8_t*>(data));
}

int Port::length(std::uint32_t unit, std::uint32_t control) {
    const AutoLock lock(mutex);
    return static_cast<int>(checkControl(unit, control));
}

std::optional<Bytes> Port::describe(std::uint32_t unit, std::uint32_t control) const {
    const AutoLock lock(mutex);
    if (unit == IO::extensionUnitList) {
        IO::ExtensionUnitEntry own{static_cast<std::uint8_t>(firmware->unit()), firmware->guid(), {}};
        for (const std::uint32_t selector : firmware->selectors())
            own.selectors.push_back(static_cast<std::uint8_t>(selector));
        Bytes list;
        IO::appendExtensionUnit(list, own);
        return list;
    }
    const std::uint32_t selector = control & 0xFF;
    switch (static_cast<std::int32_t>(control - selector)) {
    case IO::ExtensionUnitQuery_MINIMUM:
    case IO::ExtensionUnitQuery_DEFAULT:
        return Bytes(checkControl(unit, selector), 0);
    case IO::ExtensionUnitQuery_MAXIMUM:
        return Bytes(checkControl(unit, selector), 0xFF);
    case IO::ExtensionUnitQuery_STEP:
        return Bytes(checkControl(unit, selector), 1);
    case IO::ExtensionUnitQuery_ABILITIES:
        static_cast<void>(checkControl(unit, selector));
        return Bytes{static_cast<std::uint8_t>(firmware->canBeSent(selector) ? 3 : 1)};
    default:
        return std::nullopt;
    }
}

void Port::addFault(std::uint32_t transfer, Fault::Kind kind, std::uint32_t hangMillis) {
    Fault fault;
    fault.kind = kind;
    fault.at = Operation::Transfer;
    fault.after = transfer - 1;
    fault.times = 1;
    fault.milliseconds = hangMillis;
    faults->add(fault);
}

std::vector<Transfer> Port::log() const {
    const AutoLock lock(mutex);
    return transfers;
}

void Port::clearLog() {
    const AutoLock lock(mutex);
    transfers.clear();
}

std::uint16_t Port::tofRegister(std::uint8_t address) const {
    const AutoLock lock(mutex);
    const RegisterFile* registers = firmware->tofRegisters();
    return registers ? static_cast<std::uint16_t>(registers->peek(address)) : std::uint16_t{0};
}

void Port::setObserver(std::function<void(const Transfer&)> observer) {
    const AutoLock lock(mutex);
    observe = std::move(observer);
}

void Port::switchSensorsOn() {
    const AutoLock lock(mutex);
    powerOn = Utils::Clock::nowMicros();
}

void Port::refreshSensors() {
    RegisterFile* const registers = firmware->tofRegisters();
    if (powerOn == 0 || !registers)
        return;
    const std::int64_t now = Utils::Clock::nowMicros();
    if (now - std::exchange(lastGet, now) <= quietMicros)
        return;
    const SensorReadings readings = sensorsAfter(static_cast<double>(now - powerOn) / 1e6);
    registers->change(Cameras::sensorTemperatureRegister, readings.sensorTemperature);
    registers->change(Cameras::illuminationTemperatureRegister, readings.illuminationTemperature);
    std::uint8_t address = Cameras::accelerationRegister;
    for (const std::int16_t axis : readings.acceleration)
        registers->change(address++, static_cast<std::uint16_t>(axis));
}

std::size_t Port::checkControl(std::uint32_t unit, std::uint32_t control) const {
    const auto bytes = unit == firmware->unit() ? firmware->length(control) : std::nullopt;
    if (!bytes)
        throw Plugin::IOPluginException(Format("no control % on unit %") % control % unit);
    return *bytes;
}

void Port::perform(Transfer& transfer) {
    if (transfer.isGet) {
        transfer.reply = firmware->get(transfer.control, transfer.sent);
    } else {
        firmware->set(transfer.control, transfer.sent);
    }
}

void Port::record(Transfer transfer) {
    if (observe)
        observe(transfer);
    // Half of the log at once, so that it is seldom done.
    if (transfers.size() == logLimit)
        transfers.erase(transfers.begin(), transfers.begin() + logLimit / 2);
    transfers.push_back(std::move(transfer));
}

void Port::run(Transfer& transfer) {
    try {
        std::optional<Fault> fault;
        {
            const AutoLock lock(mutex);
            if (!selected)
                throw Plugin::IOPluginException("no extension unit was selected");
            const std::size_t bytes = checkControl(transfer.unit, transfer.control);
            if (bytes != transfer.sent.size())
                throw Plugin::IOPluginException(
                    Format("control % of unit % has % bytes, not %") % transfer.control % transfer.unit %
                    static_cast<unsigned>(bytes) % static_cast<unsigned>(transfer.sent.size()));
            if (transfer.isGet)
                refreshSensors();
            fault = faults->due(Operation::Transfer);
            if (!fault) {
                perform(transfer);
                return record(transfer);
            }
        }
        // Without the lock: a transfer that hangs is cancelled by another thread.
        runFaulty(transfer, *fault);
        const AutoLock lock(mutex);
        record(transfer);
    } catch (const std::exception& failure) {
        const AutoLock lock(mutex);
        transfer.reply.clear();
        transfer.failure = failure.what();
        record(transfer);
        throw;
    }
}

void Port::runFaulty(Transfer& transfer, const Fault& fault) {
    if (fault.kind == Fault::Kind::Hang)
        throw Plugin::TimeoutPluginException(faults->hang(fault.milliseconds) ? "the camera did not answer"
                                                                              : "the transfer was cancelled");
    const AutoLock lock(mutex);
    switch (fault.kind) {
    case Fault::Kind::Late: // the camera has done it, but nobody waits any more
        perform(transfer);
        throw Plugin::TimeoutPluginException("the answer came too late");
    case Fault::Kind::Short:
        refuseLength(transfer, transfer.sent.size() - 1);
    case Fault::Kind::Long:
        refuseLength(transfer, transfer.sent.size() + 1);
    case Fault::Kind::Corrupt:
        if (!transfer.isGet)
            corrupt(transfer.sent);
        perform(transfer);
        if (transfer.isGet)
            corrupt(transfer.reply);
        return;
    case Fault::Kind::Fail:
        throw Plugin::IOPluginException("the transfer failed");
    default:
        Faults::raise(fault);
    }
}

std::unique_ptr<Port> makePort(const Settings& settings, std::shared_ptr<Faults> faults) {
    std::unique_ptr<Firmware> firmware = makeFirmware(settings.firmware);
    if (!firmware)
        return nullptr;
    auto port = std::make_unique<Port>(std::move(firmware), std::move(faults));
    port->switchSensorsOn();
    if (settings.transferLog.empty())
        return port;
    const std::string& path = settings.transferLog;
    auto file = std::make_shared<std::ofstream>(
        std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::app | std::ios::binary);
    if (!*file)
        throw Plugin::ConfigurationPluginException(
            Format("simulated camera: cannot write the transfer log '%'") % path);
    port->setObserver([file, name = port->model().name()](const Transfer& transfer) {
        *file << IO::CameraChip::lineOf(name, transfer) << '\n' << std::flush;
    });
    return port;
}

} // namespace Zentara::Simulated
