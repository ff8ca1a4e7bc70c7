#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/chips/chip_session.h"
#include "tools/zentara/interrupt.h"
#include "tools/zentara/text_columns.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

struct RegOptions : ChipOptions {
    std::string target;
    std::uint32_t reg = 0;
    std::uint32_t last = 0; ///< of several that are read
    std::uint32_t value = 0;
    unsigned times = 1;
    WatchTimes watch;
};

IO::CameraChip::Target targetOf(const std::string& name) {
    const std::map<std::string, IO::CameraChip::Target> targets{{"bridge", IO::CameraChip::Target::Bridge},
                                                                {"tof", IO::CameraChip::Target::Tof},
                                                                {"rgb", IO::CameraChip::Target::Color}};
    return targets.at(name);
}

/// The controller says how wide its registers are; what does not fit is refused before a transfer.
IO::CameraChip::RegisterLimits limitsOf(ChipSession& session, const RegOptions& options) {
    IO::CameraChip::RegisterLimits limits{};
    attempt("ask for the widths of the target",
            [&] { limits = session.chip().limits(targetOf(options.target)); });
    checkRange("register", std::max(options.reg, options.last), limits.reg, session.chip());
    return limits;
}

unsigned readRegister(ChipSession& session, const RegOptions& options, std::uint32_t reg) {
    unsigned value = 0;
    attempt(Format("read % register %") % options.target % hexText(reg),
            [&] { value = session.chip().read(targetOf(options.target), reg); });
    return value;
}

ExitCode runRegRead(const RegOptions& options, Console& console) {
    ChipSession session(options, console);
    static_cast<void>(limitsOf(session, options));
    if (options.last == options.reg) {
        const unsigned value = readRegister(session, options, options.reg);
        session.finish({{"target", options.target}, {"register", options.reg}, {"value", value}},
                       hexText(value));
        return Failure::None;
    }
    std::string text;
    Json registers = Json::array();
    for (std::uint64_t reg = options.reg; reg <= options.last; ++reg) {
        const unsigned value = readRegister(session, options, static_cast<std::uint32_t>(reg));
        registers.push_back({{"register", reg}, {"value", value}});
        text +=
            (text.empty() ? "" : "\n") + padded(hexText(static_cast<std::uint32_t>(reg)), 8) + hexText(value);
    }
    session.finish({{"target", options.target}, {"registers", std::move(registers)}}, text);
    return Failure::None;
}

/// A line at the beginning, and one whenever a register has another value than at the last look.
ExitCode runRegWatch(const RegOptions& options, Console& console) {
    ChipSession session(options, console);
    static_cast<void>(limitsOf(session, options));
    console.lines = true;
    std::map<std::uint64_t, unsigned> known;
    const InterruptWatch interrupt;
    const bool interrupted = watchEvery(options.watch, interrupt, [&](double seconds) {
        for (std::uint64_t reg = options.reg; reg <= options.last; ++reg) {
            const unsigned value = readRegister(session, options, static_cast<std::uint32_t>(reg));
            const auto [place, isNew] = known.try_emplace(reg, value);
            if (!isNew && std::exchange(place->second, value) == value)
                continue;
            if (options.json) {
                printOnOneLine(console.out, session.about({{"seconds", seconds},
                                                           {"target", options.target},
                                                           {"register", reg},
                                                           {"value", value}}));
            } else {
                console.out << fixed(seconds, 1) << " s  "
                            << padded(hexText(static_cast<std::uint32_t>(reg)), 8) << hexText(value)
                            << std::endl;
            }
        }
        return console.out.good();
    });
    return interrupted ? Failure::Interrupted : Failure::None;
}

ExitCode runRegWrite(RegOptions options, Console& console) {
    options.writes = true;
    ChipSession session(options, console);
    checkRange("value", options.value, limitsOf(session, options).value, session.chip());
    for (unsigned i = 0; i < options.times; ++i)
        attempt(Format("write % register %") % options.target % hexText(options.reg),
                [&] { session.chip().write(targetOf(options.target), options.reg, options.value); });
    session.finish({{"target", options.target},
                    {"register", options.reg},
                    {"value", options.value},
                    {"times", options.times}},
                   Format("% % := %") % options.target % hexText(options.reg) % hexText(options.value));
    return Failure::None;
}

std::uint32_t numberOf(const std::string& text) {
    std::uint32_t number = 0;
    if (!CLI::detail::lexical_cast(text, number))
        throw CLI::ValidationError("REGISTER", text + " is no number of a register: 0 to 4294967295");
    return number;
}

void addTarget(CLI::App& command, RegOptions& options) {
    command.add_option("TARGET", options.target, "bridge, tof or rgb")
        ->required()
        ->check(CLI::IsMember({"bridge", "tof", "rgb"}));
    addChipOptions(command, options);
}

void addRegisters(CLI::App& command, RegOptions& options) {
    addTarget(command, options);
    command
        .add_option_function<std::string>(
            "REGISTER",
            [&options](const std::string& text) {
                const std::size_t dash = text.find('-', 1);
                options.reg = numberOf(text.substr(0, dash));
                options.last = dash == std::string::npos ? options.reg : numberOf(text.substr(dash + 1));
                if (options.last < options.reg)
                    throw CLI::ValidationError("REGISTER", text + " ends before it begins");
            },
            "Its number, decimal or 0x hexadecimal, or the first and the last of several: 0x20-0x2F")
        ->required();
}

} // namespace

Verb addRegVerb(CLI::App& program) {
    auto options = std::make_shared<RegOptions>();
    CLI::App* command =
        program.add_subcommand("reg", "Reads and writes registers of a camera's controller")->group("Verbs");
    command->require_subcommand(1);
    CLI::App* read = command->add_subcommand("read", "Prints a register, or several");
    addRegisters(*read, *options);
    CLI::App* watch =
        command->add_subcommand("watch", "Prints registers, and again whenever one has changed");
    addRegisters(*watch, *options);
    watch->add_option("--seconds", options->watch.seconds, "Watch so long; until Ctrl-C unless given")
        ->type_name("N")
        ->check(secondsBetween(shortestWatch, longestWatch));
    watch->add_option("--interval", options->watch.interval, "Milliseconds between looks")
        ->type_name("MS")
        ->capture_default_str()
        ->check(CLI::Range(1U, 3'600'000U).description(""));
    CLI::App* write = command->add_subcommand("write", "Writes a register");
    addTarget(*write, *options);
    write->add_option("REGISTER", options->reg, "Its number, decimal or 0x hexadecimal")
        ->required()
        ->check(any32Bits());
    write->add_option("VALUE", options->value, "What to write")->required()->check(any32Bits());
    write->add_option("--times", options->times, "Write it so many times")
        ->capture_default_str()
        ->check(CLI::Range(1U, 1000000U));
    return {command, [options, read, watch](Console& console) {
                if (watch->parsed())
                    return runRegWatch(*options, console);
                return read->parsed() ? runRegRead(*options, console) : runRegWrite(*options, console);
            }};
}

} // namespace Zentara::Tool
