#include <map>
#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/chips/chip_session.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

struct RegOptions : ChipOptions {
    std::string target;
    std::uint32_t reg = 0;
    std::uint32_t value = 0;
    unsigned times = 1;
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
    checkRange("register", options.reg, limits.reg, session.chip());
    return limits;
}

ExitCode runRegRead(const RegOptions& options, Console& console) {
    ChipSession session(options, console);
    static_cast<void>(limitsOf(session, options));
    unsigned value = 0;
    attempt(Format("read % register %") % options.target % hexText(options.reg),
            [&] { value = session.chip().read(targetOf(options.target), options.reg); });
    session.finish({{"target", options.target}, {"register", options.reg}, {"value", value}}, hexText(value));
    return Failure::None;
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

void addRegister(CLI::App& command, RegOptions& options) {
    command.add_option("TARGET", options.target, "bridge, tof or rgb")
        ->required()
        ->check(CLI::IsMember({"bridge", "tof", "rgb"}));
    command.add_option("REGISTER", options.reg, "Its number, decimal or 0x hexadecimal")
        ->required()
        ->check(any32Bits());
    addChipOptions(command, options);
}

} // namespace

Verb addRegVerb(CLI::App& program) {
    auto options = std::make_shared<RegOptions>();
    CLI::App* command =
        program.add_subcommand("reg", "Reads and writes registers of a camera's controller")->group("Verbs");
    command->require_subcommand(1);
    CLI::App* read = command->add_subcommand("read", "Prints a register");
    addRegister(*read, *options);
    CLI::App* write = command->add_subcommand("write", "Writes a register");
    addRegister(*write, *options);
    write->add_option("VALUE", options->value, "What to write")->required()->check(any32Bits());
    write->add_option("--times", options->times, "Write it so many times")
        ->capture_default_str()
        ->check(CLI::Range(1U, 1000000U));
    return {command, [options, read](Console& console) {
                return read->parsed() ? runRegRead(*options, console) : runRegWrite(*options, console);
            }};
}

} // namespace Zentara::Tool
