#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/chips/chip_session.h"
#include "tools/zentara/interrupt.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

struct I2cOptions : ChipOptions {
    unsigned device = 0;
    std::uint32_t reg = 0;
    unsigned value = 0;
    unsigned bytes = 2;
};

std::string placeOf(const I2cOptions& options) {
    return Format("I2C device % register %") % hexText(options.device) % hexText(options.reg);
}

Json resultOf(const I2cOptions& options, unsigned value) {
    return {
        {"device", options.device}, {"register", options.reg}, {"bytes", options.bytes}, {"value", value}};
}

/// How wide device, register and value are, the controller says; what does not fit is refused before a transfer, for it
/// would be cut to another register's number on the wire.
IO::CameraChip::BusLimits limitsOf(ChipSession& session, const I2cOptions& options) {
    IO::CameraChip::BusLimits limits{};
    attempt("ask for the widths of the device", [&] {
        limits = session.chip().i2cLimits(static_cast<std::uint8_t>(options.device),
                                          static_cast<std::uint8_t>(options.bytes));
    });
    checkRange("device", options.device, limits.device, session.chip());
    checkRange("register", options.reg, limits.of.reg, session.chip());
    return limits;
}

ExitCode runI2cRead(const I2cOptions& options, Console& console) {
    ChipSession session(options, console);
    static_cast<void>(limitsOf(session, options));
    unsigned value = 0;
    attempt("read " + placeOf(options), [&] {
        value = session.chip().readI2c(static_cast<std::uint8_t>(options.device), options.reg,
                                       static_cast<std::uint8_t>(options.bytes));
    });
    session.finish(resultOf(options, value), hexText(value));
    return Failure::None;
}

ExitCode runI2cWrite(I2cOptions options, Console& console) {
    options.writes = true;
    ChipSession session(options, console);
    checkRange("value", options.value, limitsOf(session, options).of.value, session.chip());
    attempt("write " + placeOf(options), [&] {
        session.chip().writeI2c(static_cast<std::uint8_t>(options.device), options.reg, options.value,
                                static_cast<std::uint8_t>(options.bytes));
    });
    session.finish(resultOf(options, options.value), placeOf(options) + " := " + hexText(options.value));
    return Failure::None;
}

/// Asks every address for one register: some device answers there, or the camera refuses the transfer.
ExitCode runI2cScan(const I2cOptions& options, Console& console) {
    ChipSession session(options, console);
    const unsigned last = limitsOf(session, options).device;
    Json devices = Json::array();
    std::string text;
    const InterruptWatch interrupt;
    for (unsigned device = 0; device <= last && !interrupt.interrupted(); ++device) {
        try {
            unsigned value = 0;
            attempt("read I2C device " + hexText(device), [&] {
                value = session.chip().readI2c(static_cast<std::uint8_t>(device), options.reg,
                                               static_cast<std::uint8_t>(options.bytes));
            });
            devices.push_back({{"device", device}, {"value", value}});
            text +=
                Format("%  register % holds %\n") % hexText(device) % hexText(options.reg) % hexText(value);
        } catch (const Failure& failure) {
            // A camera that is silent, or gone, says nothing about a device.
            if (failure.code() == Failure::TimedOut || failure.code() == Failure::NoDevice)
                throw;
        }
    }
    if (interrupt.interrupted())
        return Failure::Interrupted;
    const std::size_t found = devices.size();
    session.finish({{"register", options.reg}, {"devices", std::move(devices)}},
                   text.append(Format("% of % addresses answer") % found % (last + 1)));
    return Failure::None;
}

void addBusOptions(CLI::App& command, I2cOptions& options) {
    command.add_option("--bytes", options.bytes, "Data bytes; an OV0570 knows them itself")
        ->capture_default_str()
        ->check(CLI::Range(1U, 2U));
    addChipOptions(command, options);
}

void addDevice(CLI::App& command, I2cOptions& options) {
    command.add_option("DEVICE", options.device, "Its address on the bus")
        ->required()
        ->check(CLI::Range(0U, 0xFFU));
    command.add_option("REGISTER", options.reg, "The register's number")->required()->check(any32Bits());
    addBusOptions(command, options);
}

} // namespace

Verb addI2cVerb(CLI::App& program) {
    auto options = std::make_shared<I2cOptions>();
    CLI::App* command =
        program.add_subcommand("i2c", "Reads and writes registers of any device on a camera's bus")
            ->group("Verbs");
    command->require_subcommand(1);
    CLI::App* read = command->add_subcommand("read", "Prints a register");
    addDevice(*read, *options);
    CLI::App* write = command->add_subcommand("write", "Writes a register");
    addDevice(*write, *options);
    write->add_option("VALUE", options->value, "What to write")->required()->check(CLI::Range(0U, 0xFFFFU));
    CLI::App* scan =
        command->add_subcommand("scan", "Reads one register at every address, and prints who answers");
    scan->add_option("--register", options->reg, "The register's number")
        ->capture_default_str()
        ->check(any32Bits());
    addBusOptions(*scan, *options);
    return {command, [options, read, scan](Console& console) {
                if (scan->parsed())
                    return runI2cScan(*options, console);
                return read->parsed() ? runI2cRead(*options, console) : runI2cWrite(*options, console);
            }};
}

} // namespace Zentara::Tool
